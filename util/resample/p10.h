// Unsigned 16-bit fixed point with 10 fractional bits: 1024 = 1.0.
#pragma once

#include <cstdint>

#include "util/float_to_int.h"

namespace qz {

// The low 16 bits of the truncated value.
inline uint16_t truncate_to_p10(float value)
{
    return truncate_to_low_16(value * 1024.0f);
}

} // namespace qz
