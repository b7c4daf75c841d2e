// Factors of the manual strengths for each block, and the scaling of hardware fields by them.
#pragma once

#include <algorithm>
#include <cstdint>

#include "qz_isp/noise_detail.h"
#include "util/float_to_int.h"

namespace qz {

struct strength_rule {
    double at_127; // what is added to a factor of 1.0 at the ends of the strength's range
    double at_minus_128;
    uint32_t limit; // of what a strength other than 0 gives; 0: none
};

#define QZ_STRENGTH(name, at_127, at_minus_128, limit)                                                                 \
    inline constexpr strength_rule name##_strength = {at_127, at_minus_128, limit};
ISP_STRENGTHS(QZ_STRENGTH)
#undef QZ_STRENGTH

// Where a sharpness other than 0 moves fields 4 to 7 of fringe control, all the way at the ends of its range.
constexpr int32_t fringe_control_end(int8_t sharpness)
{
    return sharpness < 0 ? 0 : 65535;
}

// Linear on either side of 0; 1.0 at 0.
constexpr float strength_factor(int8_t strength, const strength_rule &rule)
{
    if (strength > 0)
        return static_cast<float>(1.0 + strength * rule.at_127 / 127.0);
    return static_cast<float>(1.0 + strength * -rule.at_minus_128 / 128.0);
}

// The integer part. A factor of 1.0 keeps every value, also those that wrapped to more digits than a float has.
inline uint32_t scaled(uint32_t value, float factor)
{
    return factor == 1.0f ? value : truncate_to_u32(static_cast<float>(value) * factor);
}

// The low 16 bits of the integer part, limited.
inline uint16_t scaled_16_bits(uint16_t value, float factor, uint32_t limit)
{
    const int32_t product = truncate_to_i32(static_cast<float>(value) * factor);
    return static_cast<uint16_t>(std::min<uint32_t>(static_cast<uint16_t>(product), limit));
}

} // namespace qz
