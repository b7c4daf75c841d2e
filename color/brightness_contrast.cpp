#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qz_isp/color.h"
#include "util/multiversion.h"

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

    // A curve is a power of a base that it forms first, brought back to the table's scale.
    float brightness_base(float x) const { return x / max; }
    float brightened(float powered) const { return powered * max; }
    float contrast_base(float y) const
    {
        const float below_max = std::fabs(y - max);
        return half >= y ? y : below_max;
    }
    float contrasted(float y, float powered) const
    {
        return half >= y ? powered * low_factor : powered * high_factor + max;
    }
};

// For values of the curves, which lie from 0 to the table's largest entry, give or take a rounding.
uint16_t rounded(float value)
{
    const double half_up = static_cast<double>(value) + 0.5;
    return static_cast<uint16_t>(static_cast<int32_t>(half_up));
}

// Tables are worked on a stretch at a time: what lies around the powers vectorises by itself.
constexpr size_t stretch = 64;

QZ_MULTIVERSION
void apply_brightness(const tone_curves &curves, const uint16_t *in, uint16_t *out, size_t n)
{
    float powers[stretch];
    for (size_t start = 0; start < n; start += stretch) {
        const size_t entries = std::min(stretch, n - start);
        for (size_t i = 0; i < entries; ++i)
            powers[i] = curves.brightness_base(in[start + i]);
        for (size_t i = 0; i < entries; ++i)
            powers[i] = std::pow(powers[i], curves.brightness);
        for (size_t i = 0; i < entries; ++i)
            out[start + i] = rounded(curves.brightened(powers[i]));
    }
}

QZ_MULTIVERSION
void apply_contrast(const tone_curves &curves, uint16_t *table, size_t n)
{
    float powers[stretch];
    for (size_t start = 0; start < n; start += stretch) {
        const size_t entries = std::min(stretch, n - start);
        for (size_t i = 0; i < entries; ++i)
            powers[i] = curves.contrast_base(table[start + i]);
        for (size_t i = 0; i < entries; ++i)
            powers[i] = std::pow(powers[i], curves.contrast);
        for (size_t i = 0; i < entries; ++i)
            table[start + i] = rounded(curves.contrasted(table[start + i], powers[i]));
    }
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

    // Where a control is 0 its curve rounds back to every entry, so that it need not be computed.
    const tone_curves curves(brightness, contrast, max, static_cast<float>(max >> 1));
    if (brightness != 0)
        apply_brightness(curves, in, out, static_cast<size_t>(n));
    else
        std::memmove(out, in, static_cast<size_t>(n) * sizeof *out);
    if (contrast != 0)
        apply_contrast(curves, out, static_cast<size_t>(n));
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
    for (ptrdiff_t i = 0; i < n; ++i) {
        const float y = curves.brightened(power(curves.brightness_base(table[i]), curves.brightness));
        table[i] = curves.contrasted(y, power(curves.contrast_base(y), curves.contrast));
    }
}
