// x^g in double, close enough that the float next to it is the right one unless it lies next to a rounding boundary.
#pragma once

#include <cstdint>
#include <cstring>

#include "util/power/power_constants.h"
#include "util/simd/dispatch.h"

namespace qz {

template <typename To, typename From>
QZ_ALWAYS_INLINE void copy_bits(To &to, const From &from)
{
    static_assert(sizeof to == sizeof from);
    memcpy(&to, &from, sizeof to);
}

// A positive normal float as 2^exponent z, and the interval of z.
struct power_base {
    uint32_t interval;
    int32_t exponent;
    float z;
};

QZ_ALWAYS_INLINE power_base split_base(uint32_t bits)
{
    const uint32_t offset = bits - power_constants::first_z;
    power_base base = {.interval = offset >> 19 & 15u, .exponent = static_cast<int32_t>(offset) >> 23, .z = 0.0f};
    copy_bits(base.z, bits - (offset & 0xff800000u));
    return base;
}

// Bases whose estimate is within estimate_error of the power for exponents of 0.2 to 5, and whose power is a normal
// float: from 2^-25 to before 2^25.
inline constexpr uint32_t first_ordinary = 0x33000000;
inline constexpr uint32_t ordinary_end = 0x4c000000;

// In units of the estimate's last place. 500 are not reached, however the polynomials are summed: half of it is their
// error, the rest the rounding of logarithms of up to 25, times 5.
inline constexpr uint64_t estimate_error = 1024;

inline constexpr double to_integer = 0x1.8p52; // leaves the integer in the low bits of a sum

// The bits of (2^k z)^exponent from z and its interval's inverse and logarithm. Real is double and Bits uint64_t, or
// both are vectors. Additions and products are grouped so that independent ones stand side by side.
template <typename Real, typename Bits>
QZ_ALWAYS_INLINE void estimate_power(Bits &estimate, const Real &z, const Real &inverse, const Real &log, const Real &k,
                                     double exponent)
{
    constexpr auto &l = power_constants::log_series;
    constexpr auto &e = power_constants::exp_series;
    const Real r = z * inverse - 1.0; // exact
    const Real r2 = r * r;
    const Real r4 = r2 * r2;
    const Real series = ((l[0] + l[1] * r) + (l[2] + l[3] * r) * r2) + ((l[4] + l[5] * r) + l[6] * r2) * r4;
    const Real power = (log + k) * exponent + series * (r * exponent);

    const Real shifted = power + to_integer;
    const Real f = power - (shifted - to_integer);
    const Real f2 = f * f;
    const Real f4 = f2 * f2;
    const Real low = (e[0] + e[1] * f) + (e[2] + e[3] * f) * f2;
    const Real high = ((e[4] + e[5] * f) + (e[6] + e[7] * f) * f2) + (e[8] + e[9] * f) * f4;
    const Real fraction = low + high * f4;
    Bits scale;
    copy_bits(scale, shifted);
    copy_bits(estimate, fraction);
    estimate += scale << 52;
}

QZ_ALWAYS_INLINE uint64_t estimate_power(uint32_t base_bits, double exponent)
{
    const power_base base = split_base(base_bits);
    uint64_t estimate = 0;
    estimate_power<double>(estimate, base.z, power_constants::inverses[base.interval],
                           power_constants::logs[base.interval], base.exponent, exponent);
    return estimate;
}

// off is 0 where the bits that a float drops are next to half of its last place, so that a value within estimate_error
// of the estimate could round to another float; else it is below 2^29.
template <typename Bits>
QZ_ALWAYS_INLINE void tell_boundary(Bits &off, const Bits &estimate)
{
    constexpr uint64_t half = 1u << 28;
    off = (estimate - (half - estimate_error)) & (2 * half - 2 * estimate_error);
}

} // namespace qz
