// Separable bicubic resampling of an extended buffer, one vertical strip of the destination at a time. A source row is
// resampled across once and kept while destination rows need it. Destination rows between the same two source rows are
// a band: the cubics down its columns are formed once, and each of its rows evaluates them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "util/simd/vectors.h"

namespace qz {

// The cubic through samples q0 .. q3, from q1 at t = 0 to q2 at t = 1, by the Keys kernel with a = -0.5, is
// q1 + 0.5 t (b1 + t (b2 + t b3)). Real is double, float, or four of them.
template <typename Real>
QZ_ALWAYS_INLINE void form_cubic(const Real &q0, const Real &q1, const Real &q2, const Real &q3, Real &b1, Real &b2,
                                 Real &b3)
{
    b1 = q2 - q0;
    b2 = 4.0f * q2 + 2.0f * q0 - 5.0f * q1 - q3;
    b3 = 3.0f * (q1 - q2) + q3 - q0;
}

template <typename Real>
QZ_ALWAYS_INLINE void evaluate_cubic(const Real &q1, const Real &b1, const Real &b2, const Real &b3, const Real &t,
                                     Real &value)
{
    value = q1 + 0.5f * t * (b1 + t * (b2 + t * b3));
}

// Work space of one strip. Columns beyond the last one in use, up to a whole block, are computed and never stored.
template <typename Real>
struct cubic_strip {
    static constexpr uint32_t width = 256;
    static constexpr uint32_t block = 32; // as many destination samples as two of the widest vectors of 16-bit numbers
    static constexpr uint32_t no_row = UINT32_MAX;

    // Arrays first, so that each begins on a cache line where the strip does.
    uint32_t first[width]; // extended column of the first of four samples
    Real fraction[width];  // from the second sample to the third
    Real rows[4][width];   // rounded to float
    Real b1[width];        // of the band
    Real b2[width];
    Real b3[width];
    uint32_t held[4]; // extended row held[i] is in rows[i], resampled across; i is its number modulo 4
    uint32_t columns; // in use

    uint32_t padded() const { return (columns + block - 1) / block * block; }
};

// What is computed at a time.
template <typename Real, int Lanes>
using reals = vec_of<Real, Lanes * sizeof(float) / sizeof(Real)>;

// An axis turns a destination index into a source position between the first sample and the last; it rises with the
// index.
struct axis_position {
    uint32_t whole;
    float fraction;

    QZ_ALWAYS_INLINE explicit axis_position(float position)
        : whole(static_cast<uint32_t>(static_cast<int32_t>(position))),
          fraction(position - static_cast<float>(static_cast<int32_t>(position)))
    {}
};

template <typename Real, typename Axis>
QZ_ALWAYS_INLINE void place_columns(cubic_strip<Real> &strip, uint32_t first_column, const Axis &axis)
{
    const uint32_t padded = strip.padded();
    for (uint32_t c = 0; c < padded; ++c) {
        const axis_position at(axis.position(c < strip.columns ? first_column + c : 0));
        strip.first[c] = at.whole;
        strip.fraction[c] = at.fraction;
    }
    std::fill_n(strip.held, 4, strip.no_row);
}

template <typename Reals>
QZ_ALWAYS_INLINE void round_to_float(Reals &value)
{
    using floats = vec_of<float, sizeof(Reals) / sizeof(value[0])>;
    value = __builtin_convertvector(__builtin_convertvector(value, floats), Reals);
}

// Numbers from place At on of as many floats as there are lanes.
template <int At, typename Reals, typename Floats, int... Element>
QZ_ALWAYS_INLINE void take_elements(Reals &to, const Floats &from, std::integer_sequence<int, Element...> /*of to*/)
{
    to = __builtin_convertvector(__builtin_shufflevector(from, from, (At + Element)...), Reals);
}

template <int At, typename Reals, typename Floats>
QZ_ALWAYS_INLINE void take(Reals &to, const Floats &from)
{
    if constexpr (std::is_same_v<Reals, Floats>)
        to = from;
    else
        take_elements<At>(to, from, std::make_integer_sequence<int, sizeof(Reals) / sizeof(to[0])>());
}

template <int Lanes, int At, typename Real>
QZ_ALWAYS_INLINE void resample_taps(const vec<Lanes> (&tap)[4], const Real *fraction, Real *out)
{
    using numbers = reals<Real, Lanes>;
    numbers q0, q1, q2, q3, t, b1, b2, b3, value;
    take<At>(q0, tap[0]);
    take<At>(q1, tap[1]);
    take<At>(q2, tap[2]);
    take<At>(q3, tap[3]);
    load(t, fraction + At);
    form_cubic(q0, q1, q2, q3, b1, b2, b3);
    evaluate_cubic(q1, b1, b2, b3, t, value);
    round_to_float(value);
    store(out + At, value);
    if constexpr (At + sizeof(numbers) / sizeof(Real) < Lanes)
        resample_taps<Lanes, At + static_cast<int>(sizeof(numbers) / sizeof(Real))>(tap, fraction, out);
}

template <int Lanes, typename Real>
QZ_ALWAYS_INLINE void resample_across(cubic_strip<Real> &strip, const float *row, Real *out)
{
    const uint32_t padded = strip.padded();
    for (size_t c = 0; c < padded; c += Lanes) {
        vec<Lanes> tap[4];
        for (int i = 0; i < 4; ++i)
            load_quads<4>(tap[i], row, strip.first + c + i);
        transpose_quads<Lanes>(tap[0], tap[1], tap[2], tap[3]);
        resample_taps<Lanes, 0>(tap, strip.fraction + c, out + c);
    }
}

// The band from extended row first + 1 to the next.
template <int Lanes, typename Real>
QZ_ALWAYS_INLINE void enter_band(cubic_strip<Real> &strip, const float *buffer, size_t stride, uint32_t first)
{
    using numbers = reals<Real, Lanes>;
    for (uint32_t row = first; row < first + 4; ++row)
        if (strip.held[row % 4] != row) {
            resample_across<Lanes>(strip, buffer + row * stride, strip.rows[row % 4]);
            strip.held[row % 4] = row;
        }
    const uint32_t padded = strip.padded();
    for (size_t c = 0; c < padded; c += sizeof(numbers) / sizeof(Real)) {
        numbers q0, q1, q2, q3, b1, b2, b3;
        load(q0, strip.rows[first % 4] + c);
        load(q1, strip.rows[(first + 1) % 4] + c);
        load(q2, strip.rows[(first + 2) % 4] + c);
        load(q3, strip.rows[(first + 3) % 4] + c);
        form_cubic(q0, q1, q2, q3, b1, b2, b3);
        store(strip.b1 + c, b1);
        store(strip.b2 + c, b2);
        store(strip.b3 + c, b3);
    }
}

template <typename Real, typename Reals>
QZ_ALWAYS_INLINE void evaluate_at(const cubic_strip<Real> &strip, const Real *row, size_t c, const Reals &t,
                                  Reals &value)
{
    Reals q1, b1, b2, b3;
    load(q1, row + c);
    load(b1, strip.b1 + c);
    load(b2, strip.b2 + c);
    load(b3, strip.b3 + c);
    evaluate_cubic(q1, b1, b2, b3, t, value);
}

// As many values of a destination row as there are lanes.
template <int Lanes, typename Real>
QZ_ALWAYS_INLINE void evaluate(const cubic_strip<Real> &strip, const Real *row, size_t c, Real fraction,
                               vec<Lanes> &values)
{
    using numbers = reals<Real, Lanes>;
    const numbers t = numbers{} + fraction;
    if constexpr (std::is_same_v<Real, double>) {
        using half = vec_of<float, Lanes / 2>;
        numbers low, high;
        evaluate_at(strip, row, c, t, low);
        evaluate_at(strip, row, c + Lanes / 2, t, high);
        join(values, __builtin_convertvector(low, half), __builtin_convertvector(high, half),
             std::make_integer_sequence<int, Lanes>());
    } else {
        evaluate_at(strip, row, c, t, values);
    }
}

struct plane_size {
    uint32_t rows;
    uint32_t columns;
};

// Destination columns from first_column on, as many as a strip has, in all rows. Convert::store<Lanes>() turns the
// values of two vectors into samples.
template <int Lanes, typename Convert, typename Real, typename Axis, typename Sample>
QZ_ALWAYS_INLINE void resample_strip(cubic_strip<Real> &strip, const float *buffer, size_t stride, const Axis &across,
                                     const Axis &down, Sample *dst, plane_size size, uint32_t first_column)
{
    constexpr size_t step = size_t{2} * Lanes;
    strip.columns = std::min(size.columns - first_column, cubic_strip<Real>::width);
    place_columns(strip, first_column, across);

    uint32_t band = strip.no_row;
    for (uint32_t r = 0; r < size.rows; ++r) {
        const axis_position at(down.position(r));
        if (at.whole != band)
            enter_band<Lanes>(strip, buffer, stride, at.whole);
        band = at.whole;
        const Real *row = strip.rows[(band + 1) % 4];
        Sample *out = dst + size_t{r} * size.columns + first_column;
        for (size_t c = 0; c < strip.columns; c += step) {
            vec<Lanes> low, high;
            evaluate<Lanes, Real>(strip, row, c, at.fraction, low);
            evaluate<Lanes, Real>(strip, row, c + Lanes, at.fraction, high);
            if (c + step <= strip.columns) {
                Convert::template store<Lanes>(out + c, low, high);
            } else {
                Sample last[step];
                Convert::template store<Lanes>(last, low, high);
                std::copy_n(last, strip.columns - c, out + c);
            }
        }
    }
}

} // namespace qz
