// Where a tuning record goes by its id, and what filing it takes.
#pragma once

#include <cstdint>
#include <optional>

#include "qz_isp/tuning_layout.h"

namespace qz {

#define QZ_NAME(name, slot, in_320, in_768, in_1536, layout, start, part, size) name,
enum class record_name : uint8_t { ISP_TUNING_RECORDS(QZ_NAME) };
#undef QZ_NAME

struct record_kind {
    record_name name;
    uint8_t slot;       // first slot of the group
    uint8_t payload;    // byte in the record where the payload starts; 0: the group has no place for its address
    uint8_t fixed_size; // bytes that readers take for granted
    isp_record_layout layout;
    uint16_t row_size; // bytes, where the layout has rows
};

struct record_place {
    const record_kind *kind; // null: no slot takes the record
    uint8_t set;             // 0 to 2
    bool refused;            // no container may have it
};

// Nothing for an id outside the families.
std::optional<record_place> place_of(uint16_t id);

} // namespace qz
