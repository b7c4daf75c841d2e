// The records of a tuning container: which id is which slot, and how its bytes are laid out.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "fields.h"

namespace qz::tool {

constexpr uint32_t record_header_size = 8;
constexpr uint32_t container_header_size = 24;
// "VUXB" as the first four bytes of a container read as a number.
constexpr uint32_t container_tag = 0x42585556;
constexpr uint16_t rules_id = 709;
constexpr uint16_t first_set_container_id = 64513; // set index 1
constexpr uint16_t set_container_base = 64512;
constexpr uint32_t rules_start = 16;
constexpr uint32_t rule_size = 16;

// Elements of one type that follow one another in a row.
struct element_run {
    element type;
    uint16_t count;
};

// How the bytes behind the record header are laid out.
enum class record_shape : uint8_t {
    raw,    // not known to the library
    fields, // fixed fields from byte 8
    rows16, // u16 row count at byte 8, rows from byte 10
    fringe, // as rows16, followed by what the version adds
    macc,   // as rows16, with entries instead of gain rows
    rows32, // i32 row count at byte 16, rows from byte 20
};

struct record_kind {
    std::string_view name;
    int16_t offset_320;  // id offset in the 320 family, -1: none
    int16_t offset_long; // id offset in the 768 and 1536 families, -1: none
    bool only_768;       // the 1536 family does not have it
    record_shape shape;
    std::span<const element_run> row; // a row of the table
    std::span<const field> fields;    // record_shape::fields, offsets from byte 8
};

// What an id means. Kind is null for ids of a family that no slot takes.
struct record_place {
    uint16_t family; // 320, 768 or 1536
    uint8_t set;     // 0 to 2
    uint8_t offset;  // id offset
    const record_kind *kind;
};

std::span<const record_kind> record_kinds();

// Nothing for ids outside the families.
std::optional<record_place> find_place(uint16_t id);
std::optional<uint16_t> id_of(const record_kind &kind, uint16_t family, uint8_t set);

// The slot that a kind fills: chroma noise reduction has two kinds for one slot.
std::string_view slot_name(const record_kind &kind);

uint32_t row_size(std::span<const element_run> row);

// Where the rows start and how many the record states; both 0 for shapes without rows.
uint32_t rows_offset(record_shape shape);

} // namespace qz::tool
