// Separable bicubic resampling of an extended buffer, one vertical strip of the destination at a time. A source row is
// resampled across once and kept while destination rows need it. Destination rows between the same two source rows are
// a band: the cubics down its columns are formed once, and each of its rows evaluates them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "util/resample/cubic_columns.h"
#include "util/simd/doubles.h"
#include "util/simd/scalars.h"
#include "util/simd/vectors.h"

namespace qz {

struct nothing {};

// Work space of one strip. Columns beyond the last one in use, up to a whole vector, are computed and never stored.
template <typename Real>
struct cubic_strip {
    using columns_type = std::conditional_t<one_by_one<Real>, picked_columns<Real>, gathered_columns<Real>>;
    static constexpr uint32_t width = columns_type::width;
    static constexpr uint32_t no_row = UINT32_MAX;

    // Arrays first, so that each begins on a cache line where the strip does.
    Real rows[4][width]; // rounded to float
    cubics<Real, width> band;
    [[no_unique_address]] std::conditional_t<one_by_one<Real>, Real[width], nothing> evaluated;
    columns_type across;
    uint32_t held[4]; // extended row held[i] is in rows[i], resampled across; i is its number modulo 4
    uint32_t columns; // in use
};

// The band from extended row first + 1 to the next.
template <int Lanes, typename Real>
QZ_ALWAYS_INLINE void enter_band(cubic_strip<Real> &strip, const float *buffer, size_t stride, uint32_t first)
{
    for (uint32_t row = first; row < first + 4; ++row)
        if (strip.held[row % 4] != row) {
            strip.across.template resample<Lanes>(strip.columns, buffer + row * stride, strip.rows[row % 4]);
            strip.held[row % 4] = row;
        }
    form_cubics<reals<Real, Lanes>>(strip.rows[first % 4], strip.rows[(first + 1) % 4], strip.rows[(first + 2) % 4],
                                    strip.rows[(first + 3) % 4], strip.across.template whole<Lanes>(strip.columns),
                                    strip.band);
}

// Values of a destination row at its place t in the band.
template <typename Real, typename Reals>
QZ_ALWAYS_INLINE void evaluate_at(const cubic_strip<Real> &strip, const Real *row, size_t c, Real t, Reals &values)
{
    Reals q1, b1, b2, b3;
    load(q1, row + c);
    load(b1, strip.band.b1 + c);
    load(b2, strip.band.b2 + c);
    load(b3, strip.band.b3 + c);
    evaluate_cubic<Reals, Real>(q1, b1, b2, b3, t, static_cast<Real>(0.5f) * t, values);
}

// All values of a destination row, one by one.
template <typename Real>
QZ_ALWAYS_INLINE void evaluate_row(cubic_strip<Real> &strip, const Real *row, Real t)
{
    for (size_t c = 0; c < strip.across.template whole<4>(strip.columns); c += 4) {
        scalars<Real, 4> values;
        evaluate_at(strip, row, c, t, values);
        store(strip.evaluated + c, values);
    }
}

// As many values as there are lanes.
template <int Lanes, typename Real>
QZ_ALWAYS_INLINE void evaluate(const cubic_strip<Real> &strip, const Real *row, size_t c, Real t, vec<Lanes> &values)
{
    using numbers = reals<Real, Lanes>;
    if constexpr (one_by_one<Real>) {
        load_converted(values, strip.evaluated + c);
    } else if constexpr (std::is_same_v<Real, double>) {
        numbers low, high;
        evaluate_at(strip, row, c, t, low);
        evaluate_at(strip, row, c + Lanes / 2, t, high);
        vec_of<float, Lanes / 2> rounded[2];
        convert<Lanes / 2>(rounded[0], low);
        convert<Lanes / 2>(rounded[1], high);
        join(values, rounded[0], rounded[1], std::make_integer_sequence<int, Lanes>());
    } else {
        evaluate_at(strip, row, c, t, values);
    }
}

struct plane_size {
    uint32_t rows;
    uint32_t columns;
};

// Values of a row become samples; out has room for so many. Convert::store<Lanes>() turns the values of two vectors
// into samples.
template <int Lanes, typename Convert, typename Real, typename Sample>
QZ_ALWAYS_INLINE void store_row(const cubic_strip<Real> &strip, const Real *row, Real t, Sample *out, size_t room)
{
    constexpr size_t step = size_t{2} * Lanes;
    vec<Lanes> low, high;
    size_t c = 0;
    for (; c + step <= strip.columns; c += step) {
        evaluate<Lanes, Real>(strip, row, c, t, low);
        evaluate<Lanes, Real>(strip, row, c + Lanes, t, high);
        Convert::template store<Lanes>(out + c, low, high);
    }
    if (c == strip.columns)
        return;
    evaluate<Lanes, Real>(strip, row, c, t, low);
    high = low;
    if (c + Lanes < strip.columns)
        evaluate<Lanes, Real>(strip, row, c + Lanes, t, high);
    if (Lanes > 4 && c + step <= room) { // four lanes are copied faster
        Convert::template store<Lanes>(out + c, low, high);
    } else {
        Sample last[step];
        Convert::template store<Lanes>(last, low, high);
        std::copy_n(last, strip.columns - c, out + c);
    }
}

// Destination columns from first_column on, as many as a strip has, in all rows.
template <int Lanes, typename Convert, typename Real, typename Axis, typename Sample>
QZ_ALWAYS_INLINE void resample_strip(cubic_strip<Real> &strip, const float *buffer, size_t stride, const Axis &across,
                                     const Axis &down, Sample *dst, plane_size size, uint32_t first_column)
{
    strip.columns = std::min(size.columns - first_column, cubic_strip<Real>::width);
    strip.across.template place<Lanes>(across, first_column, strip.columns);
    std::fill_n(strip.held, 4, strip.no_row);

    uint32_t band = strip.no_row;
    size_t room = size_t{size.rows} * size.columns - first_column; // to the end of the plane
    for (uint32_t r = 0; r < size.rows; ++r) {
        const axis_position at(down.position(r));
        if (at.whole != band)
            enter_band<Lanes>(strip, buffer, stride, at.whole);
        band = at.whole;
        const Real *row = strip.rows[(band + 1) % 4];
        if constexpr (one_by_one<Real>)
            evaluate_row(strip, row, static_cast<Real>(at.fraction));
        store_row<Lanes, Convert, Real>(strip, row, at.fraction, dst + size_t{r} * size.columns + first_column, room);
        room -= size.columns;
    }
}

// The strips of a plane from the last to the first, each from its first row to its last: vectors are stored whole, and
// what lies beyond the end of a row is written later.
template <int Lanes, typename Convert, typename Real, typename Axis, typename Sample>
QZ_ALWAYS_INLINE void resample_plane(cubic_strip<Real> &strip, const float *buffer, size_t stride, const Axis &across,
                                     const Axis &down, Sample *dst, plane_size size)
{
    constexpr uint32_t width = cubic_strip<Real>::width;
    for (uint32_t end = (size.columns + width - 1) / width * width; end > 0; end -= width)
        resample_strip<Lanes, Convert>(strip, buffer, stride, across, down, dst, size, end - width);
}

} // namespace qz
