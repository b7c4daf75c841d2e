#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "qz_isp/color.h"
#include "util/float_to_int.h"

namespace {

// 5.0 at -128 (darker) to 0.25 at 127 (brighter).
float brightness_exponent(int8_t b)
{
    return static_cast<float>(b < 0 ? 1.0 + b * 4.0 * -0.0078125 : 1.0 - b * 0.75 / 127.0);
}

// 0.2 at -128 to 5.0 at 127.
float contrast_exponent(int8_t c)
{
    return static_cast<float>(c < 0 ? 1.0 + c * 0.8 * 0.0078125 : 1.0 + c * 4.0 / 127.0);
}

float power(float base, float exponent)
{
    return exponent == 1.0f ? base : std::pow(base, exponent);
}

// Brightness keeps 0 and the maximum; the two curves of contrast meet at half of it.
struct tone_curves {
    float brightness;
    float contrast;
    float max;
    float half;
    float low_factor;
    float high_factor;

    tone_curves(int8_t b, int8_t c, float largest, float middle)
        : brightness(brightness_exponent(b)), contrast(contrast_exponent(c)), max(largest), half(middle),
          low_factor(half > 0.0f ? half / power(half, contrast) : 0.0f),
          high_factor((half - max) / power(max - half, contrast))
    {}

    float brightened(float x) const
    {
        return power(x / max, brightness) * max;
    }

    float contrasted(float y) const
    {
        return half >= y ? power(y, contrast) * low_factor : power(std::fabs(y - max), contrast) * high_factor + max;
    }
};

uint16_t rounded(float value)
{
    return static_cast<uint16_t>(qz::truncate_to_i32(static_cast<double>(value) + 0.5));
}

} // namespace

void compute_brightness_contrast(int8_t brightness, int8_t contrast, const uint16_t *in, uint16_t *out, int32_t n)
{
    if (n < 1)
        return;
    const uint16_t max = *std::max_element(in, in + n);
    if (max == 0) {
        std::fill_n(out, n, uint16_t{0});
        return;
    }

    // Where a control is 0 its curve rounds back to every entry, so that it need not be computed. A pass for each curve
    // is faster than both in one.
    const tone_curves curves(brightness, contrast, max, static_cast<float>(max >> 1));
    if (brightness != 0)
        std::transform(in, in + n, out, [curves](uint16_t x) { return rounded(curves.brightened(x)); });
    else
        std::memmove(out, in, static_cast<size_t>(n) * sizeof *out);
    if (contrast != 0)
        std::transform(out, out + n, out, [curves](uint16_t y) { return rounded(curves.contrasted(y)); });
}

void compute_brightness_contrast_f(int8_t brightness, int8_t contrast, float *table, int32_t n)
{
    if (table == nullptr || (brightness == 0 && contrast == 0))
        return;

    float max = 0.0f;
    for (ptrdiff_t i = 0; i < n; ++i)
        max = std::max(max, table[i]);
    if (max == 0.0f) // nothing to normalise by
        return;

    const tone_curves curves(brightness, contrast, max, 0.5f * max);
    for (ptrdiff_t i = 0; i < n; ++i)
        table[i] = curves.contrasted(curves.brightened(table[i]));
}
