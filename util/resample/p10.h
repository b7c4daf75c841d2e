// Unsigned 16-bit fixed point with 10 fractional bits: 1024 = 1.0.
#pragma once

#include <cstdint>

#include "util/float_to_int.h"
#include "util/simd/narrow_integers.h"

namespace qz {

inline constexpr float p10_one = 1024.0f;

// The low 16 bits of the truncated value.
inline uint16_t truncate_to_p10(float value)
{
    return truncate_to_low_16(value * p10_one);
}

// The low 16 bits of the values of a, then of b, truncated as by truncate_to_low_16().
template <int Lanes>
QZ_ALWAYS_INLINE void truncate_to_low_16(short_vec<Lanes> &to, const vec<Lanes> &a, const vec<Lanes> &b)
{
    constexpr vec<Lanes> beyond = vec<Lanes>{} + 2147483648.0f;
    int_vec<Lanes> low[2];
    for (int i = 0; i < 2; ++i) {
        const vec<Lanes> &value = i == 0 ? a : b;
        int_vec<Lanes> too_large;
        truncate<Lanes>(low[i], value);
        at_least<Lanes>(too_large, value, beyond);
        low[i] = (low[i] | too_large) << 16 >> 16;
    }
    pack<Lanes>(to, low[0], low[1]);
    order_packed<Lanes>(to);
}

template <int Lanes>
QZ_ALWAYS_INLINE void truncate_to_p10(short_vec<Lanes> &to, const vec<Lanes> &a, const vec<Lanes> &b)
{
    truncate_to_low_16<Lanes>(to, a * p10_one, b * p10_one);
}

} // namespace qz
