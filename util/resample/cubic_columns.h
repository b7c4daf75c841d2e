// The columns of a strip of the destination, and a source row resampled at them, in two forms that give the same bits.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "util/resample/cubic.h"
#include "util/simd/doubles.h"
#include "util/simd/scalars.h"
#include "util/simd/vectors.h"

namespace qz {

// What is computed at a time.
template <typename Real, int Lanes>
using reals =
    std::conditional_t<one_by_one<Real>, scalars<Real, 4>, vec_of<Real, Lanes * sizeof(float) / sizeof(Real)>>;

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

// Numbers from place At on of as many floats as there are lanes.
template <int At, typename Reals, typename Floats, int... Element>
QZ_ALWAYS_INLINE void take_elements(Reals &to, const Floats &from, std::integer_sequence<int, Element...> /*of to*/)
{
    convert<sizeof...(Element)>(to, __builtin_shufflevector(from, from, (At + Element)...));
}

template <int At, typename Reals, typename Floats>
QZ_ALWAYS_INLINE void take(Reals &to, const Floats &from)
{
    if constexpr (std::is_same_v<Reals, Floats>)
        to = from;
    else
        take_elements<At>(to, from, std::make_integer_sequence<int, sizeof(Reals) / sizeof(to[0])>());
}

template <typename Reals>
QZ_ALWAYS_INLINE void round_to_float(Reals &value)
{
    if constexpr (std::is_same_v<std::remove_cvref_t<decltype(value[0])>, double>) {
        constexpr int count = sizeof value / sizeof(double);
        vec_of<float, count> rounded;
        convert<count>(rounded, value);
        convert<count>(value, rounded);
    }
}

// Samples of columns that lie close together are picked from vectors of neighbours. Of others, four samples of each
// column are gathered, and transposed in registers.
template <typename Real>
struct gathered_columns {
    static constexpr uint32_t width = 256;

    uint32_t first[width];  // extended column of the first of four samples
    uint32_t choice[width]; // of the first sample, from as many of a row as there are lanes, where columns are close
    Real fraction[width];   // from the second sample to the third
    bool close;             // all columns of a vector

    template <int Lanes>
    QZ_ALWAYS_INLINE static uint32_t whole(uint32_t count)
    {
        return (count + Lanes - 1) / Lanes * Lanes;
    }

    // count destination columns from one on, the last of them again up to a whole vector.
    template <int Lanes, typename Axis>
    QZ_ALWAYS_INLINE void place(const Axis &axis, uint32_t from, uint32_t count)
    {
        for (uint32_t c = 0; c < whole<Lanes>(count); ++c) {
            const axis_position at(axis.position(from + std::min(c, count - 1)));
            first[c] = at.whole;
            fraction[c] = at.fraction;
        }
        if constexpr (has_load_picked<Lanes>)
            choose<Lanes>(whole<Lanes>(count));
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE void resample(uint32_t count, const float *row, Real *out)
    {
        if constexpr (has_load_picked<Lanes>)
            if (close) {
                for (size_t c = 0; c < whole<Lanes>(count); c += Lanes) {
                    vec<Lanes> tap[4];
                    pick<Lanes>(row, c, tap);
                    resample_taps<Lanes, 0>(tap, fraction + c, out + c);
                }
                return;
            }
        for (size_t c = 0; c < whole<Lanes>(count); c += Lanes) {
            vec<Lanes> tap[4];
            for (int i = 0; i < 4; ++i)
                load_quads<4>(tap[i], row, first + c + i);
            transpose_quads<Lanes>(tap[0], tap[1], tap[2], tap[3]);
            resample_taps<Lanes, 0>(tap, fraction + c, out + c);
        }
    }

  private:
    template <int Lanes>
    QZ_ALWAYS_INLINE void choose(uint32_t count)
    {
        close = true;
        for (uint32_t c = 0; close && c < count; c += Lanes) {
            close = first[c + Lanes - 1] - first[c] < Lanes;
            for (uint32_t i = c; i < c + Lanes; ++i)
                choice[i] = first[i] - first[c];
        }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE void pick(const float *row, size_t c, vec<Lanes> (&tap)[4]) const
    {
        const float *near = row + first[c];
        int_vec<Lanes> by;
        load(by, choice + c);
        load_picked<Lanes>(tap[0], near, by);
        load_picked<Lanes>(tap[1], near + 1, by);
        load_picked<Lanes>(tap[2], near + 2, by);
        load_picked<Lanes>(tap[3], near + 3, by);
    }

    template <int Lanes, int At>
    QZ_ALWAYS_INLINE static void resample_taps(const vec<Lanes> (&tap)[4], const Real *fraction, Real *out)
    {
        using numbers = reals<Real, Lanes>;
        numbers q0, q1, q2, q3, t, b1, b2, b3, value;
        take<At>(q0, tap[0]);
        take<At>(q1, tap[1]);
        take<At>(q2, tap[2]);
        take<At>(q3, tap[3]);
        load(t, fraction + At);
        form_cubic(q0, q1, q2, q3, b1, b2, b3);
        evaluate_cubic<numbers, numbers>(q1, b1, b2, b3, t, 0.5f * t, value);
        round_to_float(value);
        store(out + At, value);
        constexpr int next = At + static_cast<int>(sizeof(numbers) / sizeof(Real));
        if constexpr (next < Lanes)
            resample_taps<Lanes, next>(tap, fraction, out);
    }
};

// The samples that columns need are picked and converted once; a cubic is formed at each, whatever columns need it.
template <typename Real>
struct picked_columns {
    static constexpr uint32_t width = 64;
    static constexpr uint32_t block = 4;
    static constexpr uint32_t most_samples = 4 * width; // far apart, columns share none

    using numbers = scalars<Real, 4>;

    uint32_t first[width]; // of four samples that were picked
    Real fraction[width];  // from the second sample to the third
    Real half_fraction[width];
    uint32_t picked[most_samples + 4]; // extended columns, rising; the last one again up to four after the last cubic
    Real sample[most_samples + 4];
    cubics<Real, most_samples> cubic; // from the second sample on
    uint32_t cubic_count;             // by a multiple of 4

    template <int /*Lanes*/>
    QZ_ALWAYS_INLINE static uint32_t whole(uint32_t count)
    {
        return (count + block - 1) / block * block;
    }

    template <int Lanes, typename Axis>
    QZ_ALWAYS_INLINE void place(const Axis &axis, uint32_t from, uint32_t count)
    {
        uint32_t samples = 0;
        uint32_t next = 0; // column behind the last one picked
        for (uint32_t c = 0; c < whole<Lanes>(count); ++c) {
            const axis_position at(axis.position(from + (c < count ? c : count - 1)));
            for (uint32_t column = next > at.whole ? next : at.whole; column < at.whole + 4; ++column)
                picked[samples++] = column;
            next = at.whole + 4;
            first[c] = samples - 4;
            fraction[c] = at.fraction;
            half_fraction[c] = 0.5f * at.fraction;
        }
        cubic_count = samples / 4 * 4; // at least three less than the samples
        while (samples < cubic_count + 4)
            picked[samples++] = next - 1;
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE void resample(uint32_t count, const float *row, Real *out)
    {
        for (uint32_t i = 0; i < cubic_count + 4; i += 4) {
            const vec<4> four = {row[picked[i]], row[picked[i + 1]], row[picked[i + 2]], row[picked[i + 3]]};
            store_converted(sample + i, four);
        }
        form_cubics<numbers>(sample, sample + 1, sample + 2, sample + 3, cubic_count, cubic);
        for (size_t c = 0; c < whole<Lanes>(count); c += 4) {
            numbers q1, b1, b2, b3, t, half_t, value;
            load_at(q1, sample + 1, first + c);
            load_at(b1, cubic.b1, first + c);
            load_at(b2, cubic.b2, first + c);
            load_at(b3, cubic.b3, first + c);
            load(t, fraction + c);
            load(half_t, half_fraction + c);
            evaluate_cubic(q1, b1, b2, b3, t, half_t, value);
            store(out + c, value);
        }
        for (size_t c = 0; c < whole<Lanes>(count); c += 4) {
            vec<4> rounded;
            load_converted(rounded, out + c);
            store_converted(out + c, rounded);
        }
    }
};

} // namespace qz
