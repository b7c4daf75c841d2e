// What one run of the library leaves, and where two runs differ.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/record/layout.h"

namespace qz::desk {

struct run_result {
    record_snapshot record;
    byte_buffer makernote; // what the run appended, as the makernote library saves it
};

// Values that belong together: a field of a block, a lens shading table, a record of the makernote.
struct value_list {
    // Blocks stand for their fields, by their numbers.
    enum : uint32_t { whole_record = 1000, record_bytes, makernote, makernote_bytes };
    uint32_t part;
    uint32_t field; // of the part; for a record of the makernote its name

    auto operator<=>(const value_list &) const = default;

    bool is_makernote() const { return part == makernote || part == makernote_bytes; }

    // As columns of sweeps are called: "edge_enhancement.param", "lens_shading.tables[2]", "makernote.ctc.value".
    std::string name() const;
    // What the name of a value has behind that of its list: "[2]", "[0][4]", or nothing.
    std::string index_text(uint32_t index) const;
    // That holds the values, or that the makernote's tell of; null where there is none.
    const block_layout *block() const;
};

// A value that two runs have otherwise, or that one of them has not.
struct value_pair {
    value_list list;
    uint32_t index;
    std::optional<int64_t> old_value;
    std::optional<int64_t> new_value;
};

// Every value that differs, and every differing byte that belongs to none, list by list. Cheap for equal runs.
void find_differences(const run_result &old_run, const run_result &new_run, std::vector<value_pair> &found);

} // namespace qz::desk
