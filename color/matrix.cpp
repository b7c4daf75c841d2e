#include <cstddef>

#include "color/constants.h"
#include "qz_isp/color.h"
#include "util/float_to_int.h"

void MulMtx3x3(float *__restrict out, const float *a, const float *b)
{
    for (size_t r = 0; r < 3; ++r) {
        const float *row = a + 3 * r;
        for (size_t c = 0; c < 3; ++c)
            out[3 * r + c] = row[0] * b[c] + row[1] * b[3 + c] + row[2] * b[6 + c];
    }
}

void set_cc_reg(const cc_fixed_matrix *cc, uint32_t *frac_bits, int32_t *out)
{
    if (cc->shift > 6)
        return;

    const qz::matrix_3x3 ccm = qz::to_float(*cc);
    qz::matrix_3x3 to_ycbcr;
    qz::matrix_3x3 folded;
    MulMtx3x3(to_ycbcr.data(), qz::cc_rgb_to_ycbcr.data(), ccm.data());
    MulMtx3x3(folded.data(), to_ycbcr.data(), qz::cc_basis_matrix.data());

    *frac_bits = 8;
    for (size_t i = 0; i < folded.size(); ++i)
        out[i] = qz::truncate_to_i32(folded[i] * 256.0f);
}
