// What is wrong with one record of a container, whatever stands around it.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "desk/base/bytes.h"
#include "desk/tuning/layout.h"

namespace qz::desk {

struct record_problem {
    std::string_view code; // short and stable: "rows-missing"
    bool refused;          // by the library, with the container; else it does something silently
    std::string text;
};

// Of the bytes of a record, header included, which are as many as its size says.
std::optional<record_problem> find_problem(byte_view record);

// Of a record that its list, of so many bytes from the record on, does not hold.
record_problem bad_size(size_t size, size_t left);

// The rows that a record of a kind with rows states, and those that its bytes hold; nothing where it is too short for
// their number.
struct row_counts {
    int64_t stated;
    int64_t held;
};
std::optional<row_counts> count_rows(byte_view record, const record_kind &kind);

} // namespace qz::desk
