#include "qz_isp/gain.h"

#include <bit>
#include <cmath>
#include <cstddef>

#include "util/float_to_int.h"
#include "util/gain_bracket.h"

void compute_generic_params(uint16_t gain, const int32_t *table, int32_t values_per_row, int32_t row_count,
                            uint32_t *out)
{
    if (row_count <= 0 || values_per_row <= 0)
        return;

    const int32_t key_at = gain;
    const auto row_words = static_cast<ptrdiff_t>(values_per_row) + 1;
    const auto row = [&](size_t number) { return table + static_cast<ptrdiff_t>(number) * row_words; };
    const auto around =
        qz::rows_around(key_at, static_cast<size_t>(row_count), [&](size_t number) { return *row(number); });
    const int32_t *lower = row(around.lower);
    const int32_t *upper = row(around.upper);
    for (ptrdiff_t j = 1; j < row_words; ++j)
        *out++ = static_cast<uint32_t>(interpolate_linear(*lower, *upper, lower[j], upper[j], key_at));
}

int32_t interpolate_linear(int32_t x0, int32_t x1, int32_t y0, int32_t y1, int32_t x)
{
    if (x1 == x0)
        return y0;

    const uint32_t rise = static_cast<uint32_t>(y1) - static_cast<uint32_t>(y0);
    const uint32_t run = static_cast<uint32_t>(x) - static_cast<uint32_t>(x0);
    const auto product = static_cast<float>(static_cast<int32_t>(rise * run));
    const auto span = static_cast<float>(static_cast<int32_t>(static_cast<uint32_t>(x1) - static_cast<uint32_t>(x0)));
    const float value = product / span + static_cast<float>(y0);
    return qz::truncate_to_i32(value > 0.0f ? std::floor(value + 0.5f) : std::ceil(value - 0.5f));
}

uint32_t calc_shifter(uint32_t v)
{
    return static_cast<uint32_t>(std::bit_width(v));
}
