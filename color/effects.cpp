#include <algorithm>
#include <cstddef>

#include "color/constants.h"
#include "qz_isp/color.h"

namespace {

constexpr size_t entry_floats = 36; // a matrix and what else a caller keeps with it: 144 bytes

const qz::matrix_3x3 *effect_matrix(uint32_t effects)
{
    if ((effects & (ISP_EFFECT_TWO_LEVEL | ISP_EFFECT_GREY)) != 0)
        return &qz::grey_effect;
    if ((effects & ISP_EFFECT_WARM_GREY) != 0)
        return &qz::warm_grey_effect;
    if ((effects & ISP_EFFECT_COOL_GREY) != 0)
        return &qz::cool_grey_effect;
    return nullptr;
}

} // namespace

void apply_color_effects_to_ccms(float *ccms, uint32_t count, uint32_t effects)
{
    const qz::matrix_3x3 *effect = effect_matrix(effects);
    if (effect == nullptr)
        return;

    qz::matrix_3x3 ccm;
    MulMtx3x3(ccm.data(), qz::yuv_to_rgb_matrix.data(), effect->data());
    for (size_t i = 0; i < count; ++i)
        std::copy(ccm.begin(), ccm.end(), ccms + i * entry_floats);
}
