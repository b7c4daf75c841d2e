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

// Ones for values of 2^31 and more, zeros for others and what is not a number: the bits of a float are told apart as an
// integer's, because compilers take comparisons of wide vectors apart.
template <int Lanes>
QZ_ALWAYS_INLINE void mask_too_large(int_vec<Lanes> &mask, const vec<Lanes> &value)
{
    constexpr uint32_t smallest = 0x4f000000;
    constexpr uint32_t infinite = 0x7f800000;
    uint_vec<Lanes> bits;
    same_bits(bits, value);
    bits -= smallest;
    bits = ~bits & (bits - (infinite - smallest + 1));
    same_bits(mask, bits);
    mask >>= 31;
}

// The same for the values of a, then those of b.
template <int Lanes>
QZ_ALWAYS_INLINE void truncate_to_p10(short_vec<Lanes> &to, const vec<Lanes> &a, const vec<Lanes> &b)
{
    int_vec<Lanes> low[2];
    for (int i = 0; i < 2; ++i) {
        const vec<Lanes> value = (i == 0 ? a : b) * p10_one;
        int_vec<Lanes> too_large;
        truncate<Lanes>(low[i], value);
        mask_too_large<Lanes>(too_large, value);
        low[i] = (low[i] | too_large) << 16 >> 16;
    }
    pack<Lanes>(to, low[0], low[1]);
    order_packed<Lanes>(to);
}

} // namespace qz
