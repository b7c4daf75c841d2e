#include "qz_isp/color.h"
#include "qz_isp/gain.h"
#include "util/float_to_int.h"

namespace {

uint32_t coefficient(float gain, uint32_t shift)
{
    const uint32_t fixed = qz::truncate_to_u32(gain * 65536.0f);
    return shift < 32 ? fixed >> shift : 0;
}

} // namespace

void compute_white_balance(const float *gains, uint32_t *shift, uint32_t *gain1, uint32_t *gain0, uint32_t *gain3,
                           uint32_t *gain2)
{
    uint32_t integer_parts = 0;
    for (int channel = 0; channel < 4; ++channel)
        integer_parts |= qz::truncate_to_u32(gains[channel]);

    const uint32_t integer_bits = calc_shifter(integer_parts);
    *shift = integer_bits;
    *gain0 = coefficient(gains[0], integer_bits);
    *gain1 = coefficient(gains[1], integer_bits);
    *gain2 = coefficient(gains[2], integer_bits);
    *gain3 = coefficient(gains[3], integer_bits);
}
