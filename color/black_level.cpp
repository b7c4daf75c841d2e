#include "color/sensor_scale.h"
#include "qz_isp/color.h"
#include "qz_isp/error.h"
#include "util/float_to_int.h"

uint32_t compute_isp_black_level_compensation(const float *levels, uint16_t bit_depth, uint32_t *out_ch1,
                                              uint32_t *out_ch0, uint32_t *out_ch3, uint32_t *out_ch2)
{
    // Multiplying by the reciprocal is not the same as dividing: a level of 64 at 10 bits gives 4100, not 4099.
    const float per_code = 1.0f / qz::sensor_full_scale(bit_depth);
    const auto in_65536ths = [per_code](float level) { return qz::truncate_to_u32(level * per_code * 65536.0f); };
    *out_ch0 = in_65536ths(levels[0]);
    *out_ch1 = in_65536ths(levels[1]);
    *out_ch2 = in_65536ths(levels[2]);
    *out_ch3 = in_65536ths(levels[3]);
    return ISP_SUCCESS;
}
