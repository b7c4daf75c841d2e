// The records of a tuning container: which id is which slot, and how its bytes are laid out.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "desk/base/fields.h"
#include "qz_isp/tuning_layout.h"
#include "qz_mkn.h"
#include "tuning/record_view.h"

namespace qz::desk {

constexpr uint32_t record_header_size = ISP_RECORD_HEADER_SIZE;
constexpr uint32_t container_header_size = QZ_MKN_HEADER_SIZE;
constexpr uint32_t container_tag = ISP_CONTAINER_TAG;
constexpr uint16_t rules_id = ISP_RULES_ID;
constexpr uint16_t set_container_base = ISP_SET_CONTAINER_BASE;
constexpr uint16_t first_set_container_id = set_container_base + 1; // set index 1
constexpr uint32_t rules_start = ISP_RULES_START;
constexpr uint32_t rule_size = sizeof(isp_selection_rule);
// Bytes between the header and the count that nothing reads.
constexpr uint32_t long_rows_reserved = ISP_LONG_ROW_COUNT_AT - record_header_size;
constexpr uint32_t rules_reserved = ISP_RULE_COUNT_AT - record_header_size;
// By their first ids.
constexpr std::array<uint16_t, 3> families = {320, 768, 1536};

struct record_kind {
    std::string_view name;
    std::string_view slot; // that it fills: chroma noise reduction has two kinds for one slot
    uint8_t in_320;        // id offset in each family, 0: none
    uint8_t in_768;
    uint8_t in_1536;
    isp_record_layout layout;
    uint32_t start;                // byte of the first row, or of the values
    uint32_t size;                 // bytes of a row, or of the values
    std::span<const field> fields; // of a row, or of the values

    bool has_rows() const { return qz::has_rows(layout); }
    bool has_long_rows() const { return layout == ISP_LAYOUT_LONG_ROWS; }
};

// A row of a fringe control record's second table.
std::span<const field> fringe_extra_row();

// What an id means. Kind is null for ids of a family that no slot takes.
struct record_place {
    uint16_t family; // 320, 768 or 1536
    uint8_t set;     // 0 to 2
    uint8_t offset;  // id offset
    const record_kind *kind;

    bool refused() const; // makes its container invalid
};

std::span<const record_kind> record_kinds();

// The id offsets of the 320 family that a container may have: "1 to 18 or 20".
std::string allowed_in_320();

// Nothing for ids outside the families.
std::optional<record_place> find_place(uint16_t id);
std::optional<uint16_t> id_of(const record_kind &kind, uint16_t family, uint8_t set);

} // namespace qz::desk
