// Values of a frame that sweeps and other commands print, chosen by name.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "desk/explain/origin.h"
#include "desk/makernote/frame_values.h"
#include "desk/record/layout.h"
#include "desk/run/session.h"

namespace qz::desk {

// What a frame was found to have. Texts are the frame's.
using cell = std::variant<std::monostate, int64_t, double, std::string_view>;

// Where a block's values came from, as columns tell it.
struct record_use {
    std::string_view record; // the kind's name
    uint8_t set;
    unsigned set_index;
    std::string rows; // "2-3", "2"; empty in a record that has no rows of gains
    std::optional<double> weight;
};

// What the values of a frame's columns are taken from, as far as column_needs says that there is any.
struct column_source {
    record_snapshot record;
    std::vector<std::optional<record_use>> uses; // as in record_blocks(); none where values are not a record's
    makernote_values makernote;

    void take_uses(const frame_origin &origin);
};

struct sweep_column {
    using value_function = cell (*)(const sweep_column &column, const column_source &frame);

    std::string name;                // as it was asked for
    std::string value_name;          // the value's own, whatever it was asked for by
    const block_layout *block;       // null: of the whole record or the makernote
    const field *described;          // null: not of the block's fields
    std::array<uint32_t, 3> indices; // of the element; of a makernote record, then its element
    value_function value;
    bool of_makernote = false;
    bool of_origin = false;
};

// "bytes_used, checksum": the numbers about the whole record.
std::string whole_column_names();

// Names that choose_columns() takes: numbers about the whole record, and of each block and each of the makernote's
// records all of it (block5.*), its values and where they came from.
std::vector<std::string> column_names();

// items: BLOCK.FIELD, BLOCK.FIELD[INDEX], BLOCK.FIELD[FIRST..LAST], BLOCK.*, the block's record, set, index, rows and
// weight, lens_shading.tables[CHANNEL][ROW][COLUMN], makernote.RECORD.value[INDEX] and numbers about the whole record,
// with commas between; none: all of those numbers and every field of at most 16 values. Fails at others.
std::vector<sweep_column> choose_columns(const std::optional<std::string> &items);

// What has to be computed for columns.
struct column_needs {
    frame_parts parts;
    std::vector<bool> origins; // of which blocks; empty: of none
    bool makernote = false;
};
column_needs needs_of(const std::vector<sweep_column> &columns);

inline cell column_value(const sweep_column &column, const column_source &frame)
{
    return column.value(column, frame);
}

} // namespace qz::desk
