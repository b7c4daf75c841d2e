// What a frame's inputs come down to before any block is computed: gain, saturation, sensor, and what is switched on.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "qz_isp/color.h"
#include "qz_isp/context.h"
#include "qz_isp/frame.h"
#include "util/float_to_int.h"

namespace qz {

// False when the gain counts as unity: without an exposure, or where one of its gains is below 1 or no number.
inline bool has_gains(const isp_exposure *exposure)
{
    return exposure != nullptr && exposure->analog_gain >= 1.0f && exposure->digital_gain >= 1.0f;
}

// 256 = unity.
inline float total_gain(const isp_exposure &exposure)
{
    return exposure.digital_gain * exposure.analog_gain * 256.0f;
}

// The hardware's gain scale has 16 bits, so that the gain is taken modulo 2^16, whatever its size.
inline uint16_t current_gain(const isp_exposure *exposure)
{
    return has_gains(exposure) ? static_cast<uint16_t>(truncate_to_u32(std::fmod(total_gain(*exposure), 65536.0f)))
                               : uint16_t{256};
}

// Factor for chroma tone control, from the inputs' saturation terms.
inline float saturation_factor(const isp_colour_params *colour, const isp_scene_params *scene, int8_t saturation,
                               uint32_t effects)
{
    float factor = 1.0f;
    if (colour != nullptr && colour->saturation > 0.0f)
        factor = colour->saturation;
    compute_saturation_factor(saturation, &factor);
    if (scene != nullptr && scene->saturation_decrement > 0.0f)
        factor = std::max(factor - scene->saturation_decrement, 0.0f);
    if ((effects & ISP_EFFECT_VIVID) != 0)
        factor *= 1.5f;
    return factor;
}

// Null unless the sensor's bit depth can be worked with: a description that is not usable counts as missing.
inline const isp_sensor_description *usable_sensor(const isp_cmc *cmc)
{
    const isp_sensor_description *sensor = cmc != nullptr ? cmc->sensor_description : nullptr;
    return sensor != nullptr && sensor->bit_depth >= 1 && sensor->bit_depth <= 31 ? sensor : nullptr;
}

constexpr bool noise_reduction_on(const isp_input_params &input)
{
    return input.nr_mode != 0;
}

constexpr bool bayer_noise_reduction_on(const isp_input_params &input)
{
    return input.nr_mode >= 2;
}

constexpr bool edges_on(const isp_input_params &input)
{
    return input.edge_mode != 0;
}

} // namespace qz
