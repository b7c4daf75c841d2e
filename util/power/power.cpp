#include "util/power/power.h"

#include <algorithm>
#include <cstdint>

#include "util/power/exact_power.h"
#include "util/power/power_estimate.h"
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

// The powers of a stretch of bases, or of less by a multiple of most_lanes. False when some could be wrong: where a
// power lies next to a rounding boundary, and of bases that are not ordinary all but 0, which curves begin with.
struct estimate_job {
    template <int Lanes>
    QZ_ALWAYS_INLINE bool run(const float *bases, float *powers, size_t count, double exponent) const
    {
        uint32_t interval[stretch];
        float k[stretch];
        float z[stretch];
        uint32_t unless_zero[stretch];
        uint32_t extraordinary = 0;
        for (size_t i = 0; i < count; ++i) {
            const auto bits = std::bit_cast<uint32_t>(bases[i]);
            const power_base base = split_base(bits);
            interval[i] = base.interval;
            k[i] = static_cast<float>(base.exponent);
            z[i] = base.z;
            unless_zero[i] = bits != 0 ? UINT32_MAX : 0;
            extraordinary |= bits != 0 && !is_ordinary(bits) ? 1u : 0u;
        }

        constexpr int doubles = Lanes / 2;
        vec_of<uint64_t, doubles> near = {};
        for (size_t i = 0; i < count; i += doubles) {
            vec_of<double, doubles> inverse;
            vec_of<double, doubles> log;
            vec_of<double, doubles> from_z;
            vec_of<double, doubles> from_k;
            look_up<doubles>(inverse, power_constants::inverses, interval + i);
            look_up<doubles>(log, power_constants::logs, interval + i);
            load_converted(from_z, z + i);
            load_converted(from_k, k + i);

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
            load(mask, unless_zero + i);
            store(powers + i, rounded & mask);
        }
        uint64_t any_near = 0;
        for (int i = 0; i < doubles; ++i)
            any_near |= near[i];
        return extraordinary == 0 && any_near >> 63 == 0;
    }
};

// Two doubles side by side take longer than one after the other on the processors of 32-bit targets, which do both in
// turn, and what surrounds them is not free.
constexpr bool one_by_one = sizeof(void *) == 4;

} // namespace

void powers(float *values, size_t count, float exponent)
{
    while (!one_by_one && count >= most_lanes) {
        const size_t now = std::min(stretch, count / most_lanes * most_lanes);
        float powers[stretch];
        if (!run_widest(estimate_job(), values, powers, now, exponent))
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
