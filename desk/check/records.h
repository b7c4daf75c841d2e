// The walk over a container's records, and what is to be said of each.
#pragma once

#include <optional>
#include <vector>

#include "desk/check/contents/record.h"

namespace qz::desk {

struct checked_rules {
    byte_view bytes; // of the rule record
    size_t offset;

    size_t count() const; // of rules that the library uses
};

struct checked_set_index {
    std::optional<size_t> offset; // of the last set container that names it
    bool holds_records = false;   // that a block reads
};

// What is in effect of a container: of what replaces something, the last.
struct checked_container {
    std::vector<checked_record> records; // by set index, set and slot
    std::optional<checked_rules> rules;
    std::vector<checked_set_index> set_indices; // as many as the container has
};

// Reports what can be said of each record alone, whatever its nesting.
checked_container check_records(byte_view container, const reporter &report);

} // namespace qz::desk
