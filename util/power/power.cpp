#include "util/power/power.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <type_traits>

#include "util/power/exact_power.h"
#include "util/power/power_estimate.h"
#include "util/simd/scalars.h"
#include "util/simd/vectors.h"

namespace qz {
namespace {

QZ_ALWAYS_INLINE bool is_ordinary(uint32_t bits)
{
    return bits - first_ordinary < ordinary_end - first_ordinary;
}

// An estimate that is off the boundary, to the nearest float: half of its last place added, the rest cut off.
QZ_ALWAYS_INLINE float nearest_float(uint64_t estimate)
{
    constexpr uint64_t bias = uint64_t{1023 - 127} << 52;
    return std::bit_cast<float>(static_cast<uint32_t>((estimate - bias + (1u << 28)) >> 29));
}

float power_of(float base, float exponent)
{
    const auto bits = std::bit_cast<uint32_t>(base);
    if (!is_ordinary(bits))
        return exact_power(base, exponent);
    const uint64_t estimate = estimate_power(bits, exponent);
    uint64_t off = 0;
    tell_boundary(off, estimate);
    return off != 0 ? nearest_float(estimate) : exact_power(base, exponent);
}

template <int Count>
QZ_ALWAYS_INLINE void look_up(vec_of<double, Count> &found, const double *table, const uint32_t *at)
{
#ifndef __clang__ // which cannot shuffle by a vector
    if constexpr (Count == 8) {
        vec_of<double, 8> first;
        vec_of<double, 8> last;
        vec_of<uint64_t, 8> lanes;
        load(first, table);
        load(last, table + 8);
        load_converted(lanes, at);
        found = __builtin_shuffle(first, last, lanes);
        return;
    }
#endif
    for (int i = 0; i < Count; ++i)
        found[i] = table[at[i]];
}

constexpr size_t stretch = 64;
constexpr size_t most_lanes = 16;

// What the estimates of a stretch of bases need.
struct split_bases {
    uint32_t interval[stretch];
    float k[stretch];
    float z[stretch];
    uint32_t unless_zero[stretch]; // all bits, or none for a base of 0, which curves begin with
    bool ordinary;                 // all that are not 0

    QZ_ALWAYS_INLINE split_bases(const float *bases, size_t count)
    {
        uint32_t extraordinary = 0;
        for (size_t i = 0; i < count; ++i) {
            uint32_t bits = 0;
            copy_bits(bits, bases[i]);
            const power_base base = split_base(bits);
            interval[i] = base.interval;
            k[i] = static_cast<float>(base.exponent);
            z[i] = base.z;
            unless_zero[i] = bits != 0 ? UINT32_MAX : 0;
            extraordinary |= bits != 0 && !is_ordinary(bits) ? 1u : 0u;
        }
        ordinary = extraordinary == 0;
    }
};

// The powers of a stretch of bases, or of less by a multiple of most_lanes. False when some could be wrong: where a
// power lies next to a rounding boundary, and of bases that are neither ordinary nor 0.
struct estimate_job {
    template <int Lanes>
    QZ_ALWAYS_INLINE bool run(const float *bases, float *powers, size_t count, double exponent) const
    {
        const split_bases split(bases, count);
        constexpr int doubles = Lanes / 2;
        vec_of<uint64_t, doubles> near = {};
        for (size_t i = 0; i < count; i += doubles) {
            vec_of<double, doubles> inverse;
            vec_of<double, doubles> log;
            vec_of<double, doubles> from_z;
            vec_of<double, doubles> from_k;
            look_up<doubles>(inverse, power_constants::inverses, split.interval + i);
            look_up<doubles>(log, power_constants::logs, split.interval + i);
            load_converted(from_z, split.z + i);
            load_converted(from_k, split.k + i);

            vec_of<uint64_t, doubles> estimate;
            estimate_power(estimate, from_z, inverse, log, from_k, exponent);
            vec_of<uint64_t, doubles> off;
            tell_boundary(off, estimate);
            near |= off - 1; // the first bit tells

            vec_of<double, doubles> value;
            vec_of<uint32_t, doubles> rounded;
            vec_of<uint32_t, doubles> mask;
            copy_bits(value, estimate);
            copy_bits(rounded, __builtin_convertvector(value, vec_of<float, doubles>));
            load(mask, split.unless_zero + i);
            store(powers + i, rounded & mask);
        }
        uint64_t any_near = 0;
        for (int i = 0; i < doubles; ++i)
            any_near |= near[i];
        return split.ordinary && any_near >> 63 == 0;
    }
};

// The same one by one, in loops over the stretch; most are a chain of operations on what is in memory.
struct separate_estimates {
    using numbers = scalars<double, 4>;

    template <int /*Lanes*/>
    QZ_ALWAYS_INLINE bool run(const float *bases, float *powers, size_t count, double exponent) const
    {
        const split_bases split(bases, count);
        double logarithm[stretch];
        double shifted[stretch];
        double estimate[stretch];
        take_logarithms(split, count, exponent, logarithm);
        raise_fractions(logarithm, count, shifted, estimate);

        uint64_t near = 0;
        for (size_t i = 0; i < count; ++i) {
            uint64_t bits = 0;
            uint64_t scale = 0;
            uint64_t off = 0;
            copy_bits(bits, estimate[i]);
            copy_bits(scale, shifted[i]);
            bits += scale << 52;
            copy_bits(estimate[i], bits);
            tell_boundary(off, bits);
            near |= off - 1; // the first bit tells
        }
        for (size_t i = 0; i < count; i += 4) {
            vec<4> rounded;
            uint_vec<4> bits, mask;
            load_converted(rounded, estimate + i);
            copy_bits(bits, rounded);
            load(mask, split.unless_zero + i);
            store(powers + i, bits & mask);
        }
        return split.ordinary && near >> 63 == 0;
    }

  private:
    // To base 2, times the exponent.
    QZ_ALWAYS_INLINE static void take_logarithms(const split_bases &split, size_t count, double exponent,
                                                 double *logarithm)
    {
        double r[stretch];
        double scaled_r[stretch];
        for (size_t i = 0; i < count; i += 4) {
            vec<4> z, k;
            load(z, split.z + i);
            store_converted(r + i, z);
            load(k, split.k + i);
            store_converted(logarithm + i, k);
        }
        numbers a, b, sum;
        for (size_t i = 0; i < count; i += 4) {
            load(a, r + i);
            load_at(b, power_constants::inverses, split.interval + i);
            store(r + i, a * b + -1.0);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(a, r + i);
            store(scaled_r + i, exponent * a);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(a, logarithm + i);
            load_at(b, power_constants::logs, split.interval + i);
            store(logarithm + i, exponent * (a + b));
        }
        for (size_t i = 0; i < count; i += 4) {
            load(a, r + i);
            add_series(power_constants::log_series, a, sum);
            load(a, scaled_r + i);
            load(b, logarithm + i);
            store(logarithm + i, sum * a + b);
        }
    }

    // 2 to the power of what each logarithm is off the next integer, which the low bits of shifted tell.
    QZ_ALWAYS_INLINE static void raise_fractions(const double *logarithm, size_t count, double *shifted, double *power)
    {
        numbers a, b;
        for (size_t i = 0; i < count; i += 4) {
            load(a, logarithm + i);
            store(shifted + i, a + to_integer);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(a, shifted + i);
            store(power + i, a + -to_integer);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(a, logarithm + i);
            load(b, power + i);
            store(power + i, a - b);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(a, power + i);
            add_series(power_constants::exp_series, a, b);
            store(power + i, b);
        }
    }

    // By Horner's rule. The loop keeps the sums in a register each, so that they take turns; unrolled all the way, the
    // compiler would compute one after the other.
    template <size_t Count>
    QZ_ALWAYS_INLINE static void add_series(const double (&coefficients)[Count], const numbers &x, numbers &sum)
    {
        constexpr size_t steps = (Count - 1) / 3;
        static_assert(3 * steps == Count - 1);
        for (double &number : sum.number)
            number = coefficients[Count - 1];
#ifndef __clang__
#pragma GCC unroll 1
#endif
        for (const double *next = coefficients + Count - 1; next != coefficients;)
            for (size_t i = 0; i < steps; ++i)
                sum = sum * x + *--next;
    }
};

using stretch_job = std::conditional_t<one_by_one<double>, separate_estimates, estimate_job>;

} // namespace

void powers(float *values, size_t count, float exponent)
{
    while (count >= most_lanes) {
        const size_t now = std::min(stretch, count / most_lanes * most_lanes);
        float powers[stretch];
        if (!run_doubles(stretch_job(), values, powers, now, exponent))
            for (size_t i = 0; i < now; ++i)
                powers[i] = power_of(values[i], exponent);
        std::copy_n(powers, now, values);
        values += now;
        count -= now;
    }
    for (size_t i = 0; i < count; ++i)
        values[i] = power_of(values[i], exponent);
}

} // namespace qz
