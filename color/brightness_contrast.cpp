#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "color/tone_curves.h"
#include "qz_isp/color.h"
#include "util/power/power.h"
#include "util/simd/dispatch.h"

namespace {

// Brightness keeps 0 and the maximum; the two curves of contrast meet at half of it.
struct tone_curves {
    float brightness;
    float contrast;
    float max;
    float half;
    float low_factor;
    float high_factor;

    tone_curves(int8_t b, int8_t c, float largest, float middle)
        : brightness(qz::brightness_exponent(b)), contrast(qz::contrast_exponent(c)), max(largest), half(middle),
          low_factor(half > 0.0f ? half / qz::power(half, contrast) : 0.0f),
          high_factor((half - max) / qz::power(max - half, contrast))
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

// An entry of a table from a value of the curves. They lie from 0 to the largest entry, give or take a rounding, where
// the half that is added before truncating need not be: the fraction, which is exact, tells the same.
void set_entry(uint16_t &entry, float value)
{
    const auto whole = static_cast<int32_t>(value);
    const float fraction = value - static_cast<float>(whole);
    entry = static_cast<uint16_t>(whole + (fraction >= 0.5f ? 1 : 0));
}

void set_entry(float &entry, float value)
{
    entry = value;
}

template <typename Entry>
QZ_ALWAYS_INLINE void form_brightness_bases(const tone_curves &curves, const Entry *table, size_t n, float *bases)
{
    for (size_t i = 0; i < n; ++i)
        bases[i] = curves.brightness_base(table[i]);
}

template <typename Entry>
QZ_ALWAYS_INLINE void brighten(const tone_curves &curves, Entry *table, size_t n, const float *powers)
{
    for (size_t i = 0; i < n; ++i)
        set_entry(table[i], curves.brightened(powers[i]));
}

template <typename Entry>
QZ_ALWAYS_INLINE void form_contrast_bases(const tone_curves &curves, const Entry *table, size_t n, float *bases)
{
    for (size_t i = 0; i < n; ++i)
        bases[i] = curves.contrast_base(table[i]);
}

template <typename Entry>
QZ_ALWAYS_INLINE void contrast(const tone_curves &curves, Entry *table, size_t n, const float *powers)
{
    for (size_t i = 0; i < n; ++i)
        set_entry(table[i], curves.contrasted(table[i], powers[i]));
}

// Whole gamma tables and stretches of longer ones.
constexpr size_t stretch = 288;

template <typename Entry>
void apply_brightness(const tone_curves &curves, const Entry *in, Entry *out, size_t n)
{
    float powers[stretch];
    for (size_t start = 0; start < n; start += stretch) {
        const size_t entries = std::min(stretch, n - start);
        qz::run_loop<form_brightness_bases<Entry>>(curves, in + start, entries, powers);
        qz::powers(powers, entries, curves.brightness);
        qz::run_loop<brighten<Entry>>(curves, out + start, entries, powers);
    }
}

template <typename Entry>
void apply_contrast(const tone_curves &curves, Entry *table, size_t n)
{
    float powers[stretch];
    for (size_t start = 0; start < n; start += stretch) {
        const size_t entries = std::min(stretch, n - start);
        qz::run_loop<form_contrast_bases<Entry>>(curves, table + start, entries, powers);
        qz::powers(powers, entries, curves.contrast);
        qz::run_loop<contrast<Entry>>(curves, table + start, entries, powers);
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
    apply_brightness(curves, table, table, static_cast<size_t>(n));
    apply_contrast(curves, table, static_cast<size_t>(n));
}
