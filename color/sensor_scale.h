// Code values of the sensor.
#pragma once

#include <cstdint>

namespace qz {

// Largest raw code value. Depths of 32 and more count modulo 32, so that every depth has one.
inline float sensor_full_scale(uint16_t bit_depth)
{
    return static_cast<float>((1u << (bit_depth % 32u)) - 1u);
}

} // namespace qz
