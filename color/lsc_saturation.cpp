#include "color/sensor_scale.h"
#include "qz_isp/color.h"

void compute_isp_lsc_saturation_compensation(const float *offsets, uint16_t bits, float *gains)
{
    const float full = qz::sensor_full_scale(bits);
    for (int channel = 0; channel < 4; ++channel)
        gains[channel] = full / (full - offsets[channel]);
}
