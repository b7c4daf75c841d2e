// Separable bicubic resampling of an extended buffer, one vertical strip of the destination at a time. A source row is
// resampled across once and kept while destination rows need it. Destination rows between the same two source rows are
// a band: the cubics down its columns are formed once, and each of its rows evaluates them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "util/lanes.h"

namespace qz {

// The cubic through samples q0 .. q3, from q1 at t = 0 to q2 at t = 1, by the Keys kernel with a = -0.5, is
// q1 + 0.5 t (b1 + t (b2 + t b3)). Real is double, float, or four of them.
template <typename Real>
[[gnu::always_inline]] inline void form_cubic(const Real &q0, const Real &q1, const Real &q2, const Real &q3, Real &b1,
                                              Real &b2, Real &b3)
{
    b1 = q2 - q0;
    b2 = 4.0f * q2 + 2.0f * q0 - 5.0f * q1 - q3;
    b3 = 3.0f * (q1 - q2) + q3 - q0;
}

template <typename Real>
[[gnu::always_inline]] inline void evaluate_cubic(const Real &q1, const Real &b1, const Real &b2, const Real &b3,
                                                  const Real &t, Real &value)
{
    value = q1 + 0.5f * t * (b1 + t * (b2 + t * b3));
}

// Work space of one strip. Columns beyond the last one in use, up to a whole block, are computed and never stored.
template <typename Real>
struct cubic_strip {
    static constexpr uint32_t width = 256;
    static constexpr uint32_t block = 32; // destination samples that are evaluated together
    static constexpr uint32_t no_row = UINT32_MAX;

    // Arrays first, so that each begins on a cache line where the strip does.
    uint32_t first[width]; // extended column of the first of four samples
    Real fraction[width];  // from the second sample to the third
    float taps[4][width];  // of the row being resampled
    float rows[4][width];
    Real b1[width]; // of the band
    Real b2[width];
    Real b3[width];
    uint32_t held[4]; // extended row held[i] is in rows[i], resampled across; i is its number modulo 4
    uint32_t columns; // in use

    uint32_t padded() const { return (columns + block - 1) / block * block; }
};

// An axis turns a destination index into a source position between the first sample and the last; it rises with the
// index.
struct axis_position {
    uint32_t whole;
    float fraction;

    [[gnu::always_inline]] explicit axis_position(float position)
        : whole(static_cast<uint32_t>(static_cast<int32_t>(position))),
          fraction(position - static_cast<float>(static_cast<int32_t>(position)))
    {}
};

template <typename Real, typename Axis>
[[gnu::always_inline]] inline void place_columns(cubic_strip<Real> &strip, uint32_t first_column, const Axis &axis)
{
    const uint32_t padded = strip.padded();
    for (uint32_t c = 0; c < padded; ++c) {
        const axis_position at(axis.position(c < strip.columns ? first_column + c : 0));
        strip.first[c] = at.whole;
        strip.fraction[c] = at.fraction;
    }
    std::fill_n(strip.held, 4, strip.no_row);
}

template <typename Real>
[[gnu::always_inline]] inline void resample_across(cubic_strip<Real> &strip, const float *row, float *out)
{
    const uint32_t padded = strip.padded();
    for (size_t c = 0; c < padded; c += 4) {
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
    for (size_t c = 0; c < padded; c += 4) {
        typename four<Real>::type q0, q1, q2, q3, t, b1, b2, b3, value;
        convert4(load4(strip.taps[0] + c), q0);
        convert4(load4(strip.taps[1] + c), q1);
        convert4(load4(strip.taps[2] + c), q2);
        convert4(load4(strip.taps[3] + c), q3);
        std::memcpy(&t, strip.fraction + c, sizeof t);
        form_cubic(q0, q1, q2, q3, b1, b2, b3);
        evaluate_cubic(q1, b1, b2, b3, t, value);
        store4(out + c, __builtin_convertvector(value, f32x4));
    }
}

template <typename Real>
[[gnu::always_inline]] inline void
form_band(const float *__restrict q0, const float *__restrict q1, const float *__restrict q2,
          const float *__restrict q3, Real *__restrict b1, Real *__restrict b2, Real *__restrict b3, size_t count)
{
    for (size_t c = 0; c < count; ++c)
        form_cubic<Real>(q0[c], q1[c], q2[c], q3[c], b1[c], b2[c], b3[c]);
}

// The band from extended row first + 1 to the next.
template <typename Real>
[[gnu::always_inline]] inline void enter_band(cubic_strip<Real> &strip, const float *buffer, size_t stride,
                                              uint32_t first)
{
    for (uint32_t row = first; row < first + 4; ++row)
        if (strip.held[row % 4] != row) {
            resample_across(strip, buffer + row * stride, strip.rows[row % 4]);
            strip.held[row % 4] = row;
        }
    form_band<Real>(strip.rows[first % 4], strip.rows[(first + 1) % 4], strip.rows[(first + 2) % 4],
                    strip.rows[(first + 3) % 4], strip.b1, strip.b2, strip.b3, strip.padded());
}

template <typename Real, typename Sample, typename Convert>
[[gnu::always_inline]] inline void evaluate_block(const float *__restrict q1, const Real *__restrict b1,
                                                  const Real *__restrict b2, const Real *__restrict b3, Real t,
                                                  Sample *__restrict out, const Convert &convert)
{
    for (size_t c = 0; c < cubic_strip<Real>::block; ++c) {
        Real value;
        evaluate_cubic<Real>(q1[c], b1[c], b2[c], b3[c], t, value);
        out[c] = convert(static_cast<float>(value));
    }
}

template <typename Real, typename Sample, typename Convert>
[[gnu::always_inline]] inline void evaluate_row(const cubic_strip<Real> &strip, const float *q1, Real t, Sample *out,
                                                const Convert &convert)
{
    constexpr size_t block = cubic_strip<Real>::block;
    const size_t whole = strip.columns / block * block;
    for (size_t c = 0; c < whole; c += block)
        evaluate_block(q1 + c, strip.b1 + c, strip.b2 + c, strip.b3 + c, t, out + c, convert);
    if (whole < strip.columns) {
        Sample last[block];
        evaluate_block(q1 + whole, strip.b1 + whole, strip.b2 + whole, strip.b3 + whole, t, last, convert);
        std::copy_n(last, strip.columns - whole, out + whole);
    }
}

struct plane_size {
    uint32_t rows;
    uint32_t columns;
};

// Destination columns from first_column on, as many as a strip has, in all rows. Convert turns a value into a sample.
template <typename Real, typename Axis, typename Sample, typename Convert>
[[gnu::always_inline]] inline void resample_strip(cubic_strip<Real> &strip, const float *buffer, size_t stride,
                                                  const Axis &across, const Axis &down, Sample *dst, plane_size size,
                                                  uint32_t first_column, const Convert &convert)
{
    strip.columns = std::min(size.columns - first_column, cubic_strip<Real>::width);
    place_columns(strip, first_column, across);

    uint32_t band = strip.no_row;
    for (uint32_t r = 0; r < size.rows; ++r) {
        const axis_position at(down.position(r));
        if (at.whole != band)
            enter_band(strip, buffer, stride, at.whole);
        band = at.whole;
        evaluate_row<Real>(strip, strip.rows[(band + 1) % 4], at.fraction,
                           dst + size_t{r} * size.columns + first_column, convert);
    }
}

} // namespace qz
