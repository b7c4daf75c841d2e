// Points of the curves that a long_5 record gives with a scale.
#pragma once

#include <cstdint>

namespace qz {

inline constexpr int32_t curve_product_limit = 4193791; // of 13 bits, in Q9

// In Q9; wraps as a signed 32-bit product.
constexpr int32_t curve_product(uint32_t value, uint32_t scale)
{
    return static_cast<int32_t>(value * scale);
}

// Limited to 13 bits.
constexpr uint32_t curve_point(uint32_t value, uint32_t scale)
{
    const int32_t product = curve_product(value, scale);
    if (product < 0)
        return 0;
    return product > curve_product_limit ? 8191 : static_cast<uint32_t>(product / 512);
}

} // namespace qz
