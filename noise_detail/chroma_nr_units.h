// The two kinds of record that fill a chroma noise reduction slot.
#pragma once

#include <cstdint>

#include "qz_isp/tuning.h"

namespace qz {

constexpr bool has_8_bit_fields(const isp_chroma_nr_slot &slot)
{
    return slot.data != nullptr;
}

// Of the first two fields where fields have 8 bits.
inline constexpr uint32_t chroma_nr_unit = 32;

} // namespace qz
