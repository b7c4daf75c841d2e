// What the columns of each sort are called, and where their values are taken from.
#pragma once

#include <span>

#include "desk/sweep/columns.h"

namespace qz::desk {

// A value by its name alone.
struct named_column {
    std::string_view name;
    sweep_column::value_function value;
};

// Numbers about the whole record.
std::span<const named_column> whole_columns();
// Where a block's values came from.
std::span<const named_column> origin_columns();

cell field_value(const sweep_column &column, const column_source &frame);
cell shading_value(const sweep_column &column, const column_source &frame);    // indices: channel, row, column
cell makernote_number(const sweep_column &column, const column_source &frame); // indices: kind, element
cell makernote_text(const sweep_column &column, const column_source &frame);   // indices: kind

} // namespace qz::desk
