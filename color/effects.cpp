#include "color/effects.h"

#include <algorithm>

namespace {

constexpr size_t entry_floats = 36; // a matrix and what else a caller keeps with it: 144 bytes

} // namespace

void apply_color_effects_to_ccms(float *ccms, uint32_t count, uint32_t effects)
{
    const qz::matrix_3x3 *effect = qz::effect_matrix(effects);
    if (effect == nullptr)
        return;

    qz::matrix_3x3 ccm;
    MulMtx3x3(ccm.data(), qz::yuv_to_rgb_matrix.data(), effect->data());
    for (size_t i = 0; i < count; ++i)
        std::copy(ccm.begin(), ccm.end(), ccms + i * entry_floats);
}
