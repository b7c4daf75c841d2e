// Values of the record that a sweep prints, chosen by name.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desk/record/layout.h"

namespace qz::desk {

struct sweep_column {
    std::string name;
    const block_layout *block; // null: a number about the whole record
    const field *described;
    uint32_t index;
    uint32_t (*whole)(const record_snapshot &snapshot);
};

// "bytes_used, checksum": the numbers about the whole record.
std::string whole_column_names();

// items: BLOCK.FIELD, BLOCK.FIELD[INDEX], BLOCK.* and numbers about the whole record, with commas between; none: all of
// those numbers and every field of at most 16 values. Fails at others.
std::vector<sweep_column> choose_columns(const std::optional<std::string> &items);

// Nothing where the frame's record does not have the value.
std::optional<int64_t> column_value(const sweep_column &column, const record_snapshot &snapshot);

} // namespace qz::desk
