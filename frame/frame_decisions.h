// What a frame's inputs come down to before any block is computed: gain, saturation, sensor, and what is switched on.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "color/effects.h"
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
inline constexpr float gain_modulus = 65536.0f;

inline uint16_t current_gain(const isp_exposure *exposure)
{
    return has_gains(exposure) ? static_cast<uint16_t>(truncate_to_u32(std::fmod(total_gain(*exposure), gain_modulus)))
                               : uint16_t{256};
}

// Whether the factor is the colour's, not 1.0.
inline bool has_saturation(const isp_colour_params *colour)
{
    return colour != nullptr && colour->saturation > 0.0f;
}

// Whether the scene takes its decrement off the factor.
inline bool lessens_saturation(const isp_scene_params *scene)
{
    return scene != nullptr && scene->saturation_decrement > 0.0f;
}

// Factor for chroma tone control, from the inputs' saturation terms.
inline float saturation_factor(const isp_colour_params *colour, const isp_scene_params *scene, int8_t saturation,
                               uint32_t effects)
{
    float factor = has_saturation(colour) ? colour->saturation : 1.0f;
    compute_saturation_factor(saturation, &factor);
    if (lessens_saturation(scene))
        factor = std::max(factor - scene->saturation_decrement, 0.0f);
    if (is_vivid(effects))
        factor *= vivid_factor;
    return factor;
}

inline constexpr uint16_t least_bit_depth = 1;
inline constexpr uint16_t most_bit_depth = 31;

// Null unless the sensor's bit depth can be worked with: a description that is not usable counts as missing.
inline const isp_sensor_description *usable_sensor(const isp_cmc *cmc)
{
    const isp_sensor_description *sensor = cmc != nullptr ? cmc->sensor_description : nullptr;
    const bool is_usable =
        sensor != nullptr && sensor->bit_depth >= least_bit_depth && sensor->bit_depth <= most_bit_depth;
    return is_usable ? sensor : nullptr;
}

// The sensor being a usable one, or null.
constexpr bool has_black_levels(const isp_colour_params *colour, const isp_sensor_description *sensor)
{
    return colour != nullptr && sensor != nullptr;
}

constexpr bool noise_reduction_on(const isp_input_params &input)
{
    return input.nr_mode != 0;
}

inline constexpr uint32_t bayer_noise_reduction_from = 2; // of nr_mode

constexpr bool bayer_noise_reduction_on(const isp_input_params &input)
{
    return input.nr_mode >= bayer_noise_reduction_from;
}

constexpr bool edges_on(const isp_input_params &input)
{
    return input.edge_mode != 0;
}

} // namespace qz
