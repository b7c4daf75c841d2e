// A sweep's rows in parts, for several processes or machines.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace qz::desk {

struct row_span {
    uint64_t first;
    uint64_t last; // one past the last row
    bool leads;    // holds the beginning of the whole
};

// The rows of "I/N", part I of N with I from 1 to N; all of them without a choice. Parts are runs of rows that differ
// in length by one row at most. Fails at other choices.
row_span shard_rows(const std::optional<std::string> &shard, uint64_t rows);

} // namespace qz::desk
