// Exponents of the tone curves.
#pragma once

#include <cstdint>

namespace qz {

// 5.0 at -128 (darker) to 0.25 at 127 (brighter).
constexpr float brightness_exponent(int8_t b)
{
    return static_cast<float>(b < 0 ? 1.0 + b * 4.0 * -0.0078125 : 1.0 - b * 0.75 / 127.0);
}

// 0.2 at -128 to 5.0 at 127.
constexpr float contrast_exponent(int8_t c)
{
    return static_cast<float>(c < 0 ? 1.0 + c * 0.8 * 0.0078125 : 1.0 + c * 4.0 / 127.0);
}

} // namespace qz
