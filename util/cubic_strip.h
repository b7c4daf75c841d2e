// Separable bicubic resampling of an extended buffer, one vertical strip of the destination at a time: each source row
// is resampled across once and kept while destination rows need it, the cubic down each column is formed once per band
// of destination rows between the same source rows, and a destination row is then four multiplications a sample.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "util/lanes.h"

namespace qz {

// Samples fy - 1 .. fy + 2 around a position, Keys kernel with a = -0.5, as q1 + 0.5 t (b1 + t (b2 + t b3)).
template <typename Real>
struct cubic {
    Real q1;
    Real b1;
    Real b2;
    Real b3;

    cubic(Real q0, Real at, Real q2, Real q3)
        : q1(at), b1(q2 - q0), b2(4 * q2 + 2 * q0 - 5 * at - q3), b3(3 * (at - q2) + q3 - q0)
    {}
};

template <typename Real>
inline Real evaluate(Real q1, Real b1, Real b2, Real b3, Real t)
{
    return q1 + Real{0.5} * t * (b1 + t * (b2 + t * b3));
}

// Work space of one strip. Columns past the strip's last one, up to a whole block, are computed and never stored.
template <typename Real>
struct cubic_strip {
    static constexpr uint32_t width = 256;
    static constexpr uint32_t block = 16;

    uint32_t columns;      // in use
    uint32_t first[width]; // extended column of the first of four taps
    float fraction[width]; // 0 .. 1 between the middle taps
    float taps[4][width];  // of the row being resampled
    float rows[4][width];  // extended row r, resampled, in rows[r % 4]
    uint32_t held[4];      // which row that is
    Real b1[width];        // cubics down the columns
    Real b2[width];
    Real b3[width];

    uint32_t padded() const { return (columns + block - 1) / block * block; }
};

inline constexpr uint32_t no_row = UINT32_MAX;

template <typename Real, typename Axis>
[[gnu::always_inline]] inline void place_columns(cubic_strip<Real> &strip, uint32_t first_column, const Axis &axis)
{
    const uint32_t padded = strip.padded();
    for (uint32_t c = 0; c < padded; ++c) {
        const float position = axis.position(c < strip.columns ? first_column + c : 0);
        const auto whole = static_cast<int32_t>(position);
        strip.first[c] = static_cast<uint32_t>(whole);
        strip.fraction[c] = position - static_cast<float>(whole);
    }
    std::fill_n(strip.held, 4, no_row);
}

template <typename Real>
[[gnu::always_inline]] inline void resample_across(cubic_strip<Real> &strip, const float *row, float *out)
{
    constexpr uint32_t block = cubic_strip<Real>::block;
    const uint32_t padded = strip.padded();
    for (uint32_t c = 0; c < padded; c += 4) {
        const uint32_t *first = strip.first + c;
        f32x4 q0 = load4(row + first[0]);
        f32x4 q1 = load4(row + first[1]);
        f32x4 q2 = load4(row + first[2]);
        f32x4 q3 = load4(row + first[3]);
        transpose4(q0, q1, q2, q3);
        store4(strip.taps[0] + c, q0);
        store4(strip.taps[1] + c, q1);
        store4(strip.taps[2] + c, q2);
        store4(strip.taps[3] + c, q3);
    }
    for (uint32_t base = 0; base < strip.columns; base += block)
        for (uint32_t c = base; c < base + block; ++c) {
            const cubic<Real> curve(strip.taps[0][c], strip.taps[1][c], strip.taps[2][c], strip.taps[3][c]);
            const Real value = evaluate<Real>(curve.q1, curve.b1, curve.b2, curve.b3, strip.fraction[c]);
            out[c] = static_cast<float>(value);
        }
}

// Makes rows[] hold extended rows first .. first + 3, and forms the cubics between them.
template <typename Real>
[[gnu::always_inline]] inline void enter_band(cubic_strip<Real> &strip, const float *buffer, size_t stride,
                                              uint32_t first)
{
    constexpr uint32_t block = cubic_strip<Real>::block;
    for (uint32_t row = first; row < first + 4; ++row)
        if (strip.held[row % 4] != row) {
            resample_across(strip, buffer + row * stride, strip.rows[row % 4]);
            strip.held[row % 4] = row;
        }

    const float *q0 = strip.rows[first % 4];
    const float *q1 = strip.rows[(first + 1) % 4];
    const float *q2 = strip.rows[(first + 2) % 4];
    const float *q3 = strip.rows[(first + 3) % 4];
    for (uint32_t base = 0; base < strip.columns; base += block)
        for (uint32_t c = base; c < base + block; ++c) {
            const cubic<Real> curve(q0[c], q1[c], q2[c], q3[c]);
            strip.b1[c] = curve.b1;
            strip.b2[c] = curve.b2;
            strip.b3[c] = curve.b3;
        }
}

template <typename Real, typename Sample, typename Convert>
[[gnu::always_inline]] inline void evaluate_block(const cubic_strip<Real> &strip, const float *q1, uint32_t base,
                                                  Real t, Sample *out, const Convert &convert)
{
    for (uint32_t c = 0; c < cubic_strip<Real>::block; ++c) {
        const uint32_t at = base + c;
        out[c] = convert(static_cast<float>(evaluate<Real>(q1[at], strip.b1[at], strip.b2[at], strip.b3[at], t)));
    }
}

template <typename Real, typename Sample, typename Convert>
[[gnu::always_inline]] inline void evaluate_row(const cubic_strip<Real> &strip, const float *q1, Real t, Sample *out,
                                                const Convert &convert)
{
    constexpr uint32_t block = cubic_strip<Real>::block;
    const uint32_t whole = strip.columns / block * block;
    for (uint32_t base = 0; base < whole; base += block)
        evaluate_block(strip, q1, base, t, out + base, convert);
    if (whole < strip.columns) {
        Sample last[block];
        evaluate_block(strip, q1, whole, t, last, convert);
        std::copy_n(last, strip.columns - whole, out + whole);
    }
}

// Destination columns first_column .. first_column + strip.columns - 1 of all rows. An axis turns a destination index
// into a source position, 0 .. source size - 1, that never falls as the index rises.
template <typename Real, typename Axis, typename Sample, typename Convert>
[[gnu::always_inline]] inline void resample_strip(cubic_strip<Real> &strip, const float *buffer, size_t stride,
                                                  const Axis &across, const Axis &down, Sample *dst, uint32_t dst_rows,
                                                  uint32_t dst_columns, uint32_t first_column, const Convert &convert)
{
    strip.columns = std::min(dst_columns - first_column, cubic_strip<Real>::width);
    place_columns(strip, first_column, across);

    uint32_t band = no_row;
    for (uint32_t r = 0; r < dst_rows; ++r) {
        const float position = down.position(r);
        const auto first = static_cast<uint32_t>(static_cast<int32_t>(position));
        const float t = position - static_cast<float>(static_cast<int32_t>(position));
        if (first != band) {
            enter_band(strip, buffer, stride, first);
            band = first;
        }
        evaluate_row<Real>(strip, strip.rows[(first + 1) % 4], t, dst + size_t{r} * dst_columns + first_column,
                           convert);
    }
}

} // namespace qz
