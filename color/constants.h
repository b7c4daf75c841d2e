// Constant matrices of the colour blocks, row by row.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "qz_isp/color.h"

namespace qz {

using matrix_3x3 = std::array<float, 9>; // row-major

// For shifts up to 6. The divisor is a power of two: every quotient is exact.
constexpr matrix_3x3 to_float(const cc_fixed_matrix &fixed)
{
    constexpr int16_t stands_for_zero = -32768;
    const auto one = static_cast<float>(32768 >> fixed.shift);
    matrix_3x3 m = {};
    for (size_t i = 0; i < m.size(); ++i) {
        const int16_t c = fixed.coefficients[i];
        m[i] = c == stands_for_zero ? 0.0f : static_cast<float>(c) / one;
    }
    return m;
}

constexpr matrix_3x3 in_256ths(const std::array<int, 9> &numerators)
{
    matrix_3x3 m = {};
    for (size_t i = 0; i < m.size(); ++i)
        m[i] = static_cast<float>(numerators[i]) / 256.0f;
    return m;
}

// BT.601 full range, Q15.
inline constexpr cc_fixed_matrix cc_rgb_to_ycbcr_q15 = {
    0,
    {
        9797, 19234, 3735,    // Y
        -5538, -10846, 16384, // Cb
        16384, -13730, -2655, // Cr
    },
};
inline constexpr matrix_3x3 cc_rgb_to_ycbcr = to_float(cc_rgb_to_ycbcr_q15);

// Input side of every hardware matrix.
inline constexpr matrix_3x3 cc_basis_matrix = {
    1.0f, -1.0f, 1.0f,  //
    1.0f, 1.0f,  0.0f,  //
    1.0f, -1.0f, -1.0f, //
};

// BT.601 with the chroma scaling of analogue video.
inline constexpr matrix_3x3 yuv_to_rgb_matrix = {
    1.0f, 0.0f,      1.13983f, // R
    1.0f, -0.39465f, -0.5806f, // G
    1.0f, 2.03211f,  0.0f,     // B
};
inline constexpr matrix_3x3 rgb_to_yuv_matrix = {
    0.299f,    0.587f,    0.114f,    // Y
    -0.14713f, -0.28886f, 0.436f,    // U
    0.615f,    -0.51499f, -0.10001f, // V
};

// Effects, from the matrix's input channels to YUV.
inline constexpr matrix_3x3 grey_effect = in_256ths({
    162, 18, 76, //
    0, 0, 0,     //
    0, 0, 0,     //
});
inline constexpr matrix_3x3 warm_grey_effect = in_256ths({
    141, 18, 68,  //
    -40, -5, -19, //
    35, 4, 16,    //
});
inline constexpr matrix_3x3 cool_grey_effect = in_256ths({
    218, 0, 0, //
    21, 0, 0,  //
    -79, 0, 0, //
});

} // namespace qz
