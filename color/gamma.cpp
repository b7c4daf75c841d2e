#include <algorithm>
#include <cstddef>

#include "color/effects.h"
#include "color/tone_curves.h"
#include "qz_isp/color.h"
#include "qz_isp/makernote_records.h"
#include "qz_isp/table_resize.h"
#include "qz_mkn.h"
#include "util/float_to_int.h"

namespace {

constexpr float straight_line[] = {0.0f, 1.0f};

void append_gamma_record(qz_mkn *mkn, uint8_t value)
{
    if (mkn != nullptr)
        qz_mkn_add_record(mkn, QZ_MKN_U8, ISP_MAKERNOTE_GAMMA_INPUT, &value, 1, nullptr);
}

// Factor, in units of 1/1024, that brings a curve's last point to 4095. The resized curve is in units of 1/256.
uint32_t normalising_scale(float last)
{
    constexpr uint32_t full_scale = 4095 * 1024;
    const auto fixed = static_cast<uint16_t>(qz::truncate_to_i32(last * 256.0f));
    return full_scale / (fixed != 0 ? fixed : 256) - 1;
}

// 0 up to the threshold, the last entry's value from there on.
void make_two_level(uint16_t *table, uint16_t len, float threshold)
{
    if (len == 0)
        return;
    const uint16_t high = table[len - 1];
    const uint32_t step = qz::truncate_to_u32(static_cast<float>(len) * threshold);
    for (size_t i = 0; i < len; ++i)
        table[i] = i < step ? 0 : high;
}

} // namespace

void compute_gamma(const isp_gamma_params *gamma, const float *curve, uint32_t effects, uint16_t *table, uint32_t len,
                   float threshold, qz_mkn *mkn)
{
    append_gamma_record(mkn, gamma != nullptr ? 2 : 0);
    if (gamma == nullptr)
        return;

    const int32_t points = qz::curve_points(curve != nullptr, gamma->point_count);
    if (points < qz::least_curve_points)
        return;
    if (curve == nullptr)
        curve = straight_line;

    const auto entries = static_cast<uint16_t>(len);
    isp_resize_1d_array_uint16(curve, points, normalising_scale(curve[points - 1]), table, entries);
    if (qz::mirrors_gamma(effects))
        invert_gamma(table, entries);
    if (qz::makes_two_levels(effects))
        make_two_level(table, entries, threshold);
}

void invert_gamma(uint16_t *table, uint16_t len)
{
    if (len == 0)
        return;
    const uint16_t last = table[len - 1];
    for (size_t i = 0; i < len; ++i)
        table[i] = static_cast<uint16_t>(last - table[i]);
}

void invert_gamma_f(float *table, uint16_t len)
{
    if (len == 0)
        return;
    const float last = table[len - 1];
    for (size_t i = 0; i < len; ++i)
        table[i] = last - table[i];
}
