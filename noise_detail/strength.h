// Factors of the manual strengths, and the scaling of hardware fields by them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "util/float_to_int.h"

namespace qz {

// What is added to a factor of 1.0 at the ends of the strength's range.
struct strength_span {
    double at_127;
    double at_minus_128;
};

inline constexpr strength_span fifth_to_fivefold = {4.0, -0.8};

// Linear on either side of 0; 1.0 at 0.
inline float strength_factor(int8_t strength, const strength_span &span)
{
    if (strength > 0)
        return static_cast<float>(1.0 + strength * span.at_127 / 127.0);
    return static_cast<float>(1.0 + strength * -span.at_minus_128 / 128.0);
}

// The integer part. A factor of 1.0 keeps every value, also those that wrapped to more digits than a float has.
inline uint32_t scaled(uint32_t value, float factor)
{
    return factor == 1.0f ? value : truncate_to_u32(static_cast<float>(value) * factor);
}

// The low 16 bits of the integer part, limited to what a 13-bit field holds.
inline uint16_t scaled_to_13_bits(uint16_t value, float factor)
{
    const int32_t product = truncate_to_i32(static_cast<float>(value) * factor);
    return std::min(static_cast<uint16_t>(product), uint16_t{8191});
}

} // namespace qz
