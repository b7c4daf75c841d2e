// The tone curves: points of a gamma curve, exponents of brightness and contrast.
#pragma once

#include <cstdint>

namespace qz {

// A gamma curve of fewer points leaves its table as it is.
inline constexpr int32_t least_curve_points = 2;

// A channel without a curve of its own has the line from 0 to 1.
constexpr int32_t curve_points(bool has_curve, uint32_t point_count)
{
    return has_curve ? static_cast<int32_t>(point_count) : 2;
}

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
