#include <cstddef>

#include "color/constants.h"
#include "qz_isp/color.h"

namespace {

// a = 0 gives grey, a = 1 the matrix unchanged.
void blend_with_grey(float *m, const qz::matrix_3x3 &grey, float a)
{
    for (size_t i = 0; i < grey.size(); ++i)
        m[i] = m[i] * a + grey[i] * (1.0f - a);
}

// Rows are brought back to a sum of 1 in equal parts, so that greys stay grey.
void boost(float *m, float a)
{
    for (size_t r = 0; r < 3; ++r) {
        float *row = m + 3 * r;
        row[r] *= a;
        const float excess = (row[0] + row[1] + row[2] - 1.0f) * 0.5f;
        row[(r + 1) % 3] -= excess;
        row[(r + 2) % 3] -= excess;
    }
}

} // namespace

void compute_saturation_factor(int8_t saturation, float *factor)
{
    if (saturation < 0)
        *factor = static_cast<float>(*factor * (1.0 + saturation * 0.0078125));
    else if (saturation > 0)
        *factor = static_cast<float>(*factor * (1.0 + saturation * 4.0 / 127.0));
}

void apply_manual_saturation_to_ccms(float *ccms, uint32_t count, uint32_t disabled, int32_t saturation, float factor)
{
    if (disabled != 0)
        return;

    qz::matrix_3x3 grey;
    MulMtx3x3(grey.data(), qz::yuv_to_rgb_matrix.data(), qz::grey_effect.data());
    const float a = (static_cast<float>(static_cast<int8_t>(saturation)) + 128.0f) * 0.0078125f * factor;
    for (size_t i = 0; i < count; ++i) {
        float *m = ccms + i * grey.size();
        if (a <= 1.0f)
            blend_with_grey(m, grey, a);
        else
            boost(m, a);
    }
}
