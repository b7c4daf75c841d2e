#include <cstddef>

#include "color/constants.h"
#include "qz_isp/color.h"
#include "qz_isp/gain.h"
#include "util/float_to_int.h"

namespace {

uint32_t magnitude(int32_t value)
{
    return value < 0 ? 0 - static_cast<uint32_t>(value) : static_cast<uint32_t>(value);
}

} // namespace

void set_yuv_to_rgb(const float *matrix, int32_t *coeffs, uint32_t *frac_bits)
{
    if (matrix == nullptr || coeffs == nullptr || frac_bits == nullptr)
        return;

    qz::matrix_3x3 folded;
    MulMtx3x3(folded.data(), matrix, qz::cc_basis_matrix.data());

    uint32_t integer_parts = 0;
    for (const float element : folded)
        integer_parts |= magnitude(qz::truncate_to_i32(element));
    const uint32_t integer_bits = calc_shifter(integer_parts);

    constexpr uint32_t coefficient_bits = 13; // besides the sign
    *frac_bits = integer_bits < coefficient_bits ? coefficient_bits - integer_bits : 0;
    const auto one = static_cast<float>(1u << *frac_bits);
    for (size_t i = 0; i < folded.size(); ++i)
        coeffs[i] = qz::truncate_to_i32(one * folded[i]);
}
