// Conversion between vectors of as many floats and doubles, one instruction each where the processor has it: the
// compiler itself converts wide ones in parts.
#pragma once

#include "util/simd/vectors.h"

#if QZ_WIDE_INSTRUCTIONS
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpsabi" // of vectors that are handed on by value, which these calls are not
#endif

namespace qz {

template <int Count>
QZ_ALWAYS_INLINE void convert(vec_of<double, Count> &to, const vec_of<float, Count> &from)
{
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Count == 8)
        to = __builtin_ia32_cvtps2pd512_mask(from, vec_of<double, Count>{}, -1, 4);
    if constexpr (Count == 4)
        to = __builtin_ia32_cvtps2pd256(from);
    if constexpr (Count == 2)
#endif
        to = __builtin_convertvector(from, vec_of<double, Count>);
}

template <int Count>
QZ_ALWAYS_INLINE void convert(vec_of<float, Count> &to, const vec_of<double, Count> &from)
{
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Count == 8)
        to = __builtin_ia32_cvtpd2ps512_mask(from, vec_of<float, Count>{}, -1, 4);
    if constexpr (Count == 4)
        to = __builtin_ia32_cvtpd2ps256(from);
    if constexpr (Count == 2)
#endif
        to = __builtin_convertvector(from, vec_of<float, Count>);
}

} // namespace qz

#if QZ_WIDE_INSTRUCTIONS
#pragma GCC diagnostic pop
#endif
