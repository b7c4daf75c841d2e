// Conversion of floating point to integers, defined for every input: values out of range saturate, NaN gives 0.
#pragma once

#include <cstdint>
#include <limits>

namespace qz {

inline int32_t truncate_to_i32(float value)
{
    if (value >= -2147483648.0f && value < 2147483648.0f)
        return static_cast<int32_t>(value);
    if (value != value)
        return 0;
    return value < 0.0f ? std::numeric_limits<int32_t>::min() : std::numeric_limits<int32_t>::max();
}

// The low 16 bits of truncate_to_i32(), without a branch: for loops that vectorise.
inline uint16_t truncate_to_low_16(float value)
{
    const bool inside = value >= -2147483648.0f && value < 2147483648.0f;
    const auto low = static_cast<uint32_t>(static_cast<int32_t>(inside ? value : 0.0f));
    return static_cast<uint16_t>(low | (value >= 2147483648.0f ? 0xffffu : 0u));
}

// The low 16 bits of truncate_to_u32(value) / 4, without a branch: for loops that vectorise. A quarter is exact, or so
// small that it truncates to 0 either way, and fits a signed number.
inline uint16_t truncate_quarter_to_low_16(float value)
{
    const float quarter = value * 0.25f;
    const bool inside = quarter > 0.0f && quarter < 1073741824.0f;
    const auto low = static_cast<uint32_t>(static_cast<int32_t>(inside ? quarter : 0.0f));
    return static_cast<uint16_t>(low | (quarter >= 1073741824.0f ? 0xffffu : 0u));
}

// Negative values give 0.
inline uint32_t truncate_to_u32(float value)
{
    if (value > -1.0f && value < 4294967296.0f)
        return static_cast<uint32_t>(value);
    return value > 0.0f ? std::numeric_limits<uint32_t>::max() : 0;
}

} // namespace qz
