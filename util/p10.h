// Unsigned 16-bit fixed point with 10 fractional bits: 1024 = 1.0.
#pragma once

#include <cstdint>

namespace qz {

// Low 16 bits of value * 1024 truncated to 32 bits signed, defined as truncate_to_i32() is, without a branch.
inline uint16_t truncate_to_p10(float value)
{
    const float scaled = value * 1024.0f;
    const bool inside = scaled >= -2147483648.0f && scaled < 2147483648.0f;
    const auto low = static_cast<uint32_t>(static_cast<int32_t>(inside ? scaled : 0.0f));
    return static_cast<uint16_t>(low | (scaled >= 2147483648.0f ? 0xffffu : 0u));
}

} // namespace qz
