// What the bits of the effect flag word ask for.
#pragma once

#include <cstddef>
#include <cstdint>

#include "color/constants.h"
#include "qz_isp/color.h"

namespace qz {

// The matrix that takes the place of the colour correction matrices; null: they stay.
constexpr const matrix_3x3 *effect_matrix(uint32_t effects)
{
    if ((effects & (ISP_EFFECT_TWO_LEVEL | ISP_EFFECT_GREY)) != 0)
        return &grey_effect;
    if ((effects & ISP_EFFECT_WARM_GREY) != 0)
        return &warm_grey_effect;
    if ((effects & ISP_EFFECT_COOL_GREY) != 0)
        return &cool_grey_effect;
    return nullptr;
}

constexpr bool mirrors_gamma(uint32_t effects)
{
    return (effects & (ISP_EFFECT_NEGATIVE | ISP_EFFECT_NEGATIVE_ALT)) != 0;
}

constexpr bool makes_two_levels(uint32_t effects)
{
    return (effects & ISP_EFFECT_TWO_LEVEL) != 0;
}

// On the saturation factor.
inline constexpr float vivid_factor = 1.5f;
constexpr bool is_vivid(uint32_t effects)
{
    return (effects & ISP_EFFECT_VIVID) != 0;
}

// Effects macc_1 to macc_5, numbered from 0: each multiplies the multi-axis sectors by a table.
inline constexpr size_t macc_effects = 5;
constexpr bool has_macc_effect(uint32_t effects, size_t effect)
{
    return (effects & (uint32_t{ISP_EFFECT_MACC_1} << effect)) != 0;
}

} // namespace qz
