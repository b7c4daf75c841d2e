// Operations on vectors of 8- and 16-bit integers that are one instruction each where the processor has it. Lanes is
// the number of floats in a vector of the same size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "util/simd/vectors.h"

#if QZ_WIDE_INSTRUCTIONS
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpsabi" // of vectors that are handed on by value, which these calls are not
#endif

namespace qz {

template <int Lanes>
using short_vec = vec_of<int16_t, 2 * Lanes>;
template <int Lanes>
using byte_vec = vec_of<uint8_t, 4 * Lanes>;

#ifdef __SSE2__
template <int Lanes>
inline constexpr bool has_narrow_integers = Lanes == 4 || QZ_WIDE_INSTRUCTIONS;
#else
template <int Lanes>
inline constexpr bool has_narrow_integers = false;
#endif

// Whether pick_bytes() works.
#ifdef __SSSE3__
template <int Lanes>
inline constexpr bool has_pick_bytes = has_narrow_integers<Lanes>;
#else
template <int Lanes>
inline constexpr bool has_pick_bytes = Lanes > 4 && has_narrow_integers<Lanes>;
#endif

template <typename To, typename From>
QZ_ALWAYS_INLINE void same_bits(To &to, const From &from)
{
    static_assert(sizeof to == sizeof from);
    memcpy(&to, &from, sizeof to);
}

// Byte i becomes the byte of the same quad that choice i names, or 0 where that has its highest bit set.
template <int Lanes>
QZ_ALWAYS_INLINE void pick_bytes(byte_vec<Lanes> &v, const byte_vec<Lanes> &choice)
{
    vec_of<char, 4 * Lanes> bytes, by;
    same_bits(bytes, v);
    same_bits(by, choice);
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Lanes == 16)
        bytes = __builtin_ia32_pshufb512_mask(bytes, by, bytes, -1);
    if constexpr (Lanes == 8)
        bytes = __builtin_ia32_pshufb256(bytes, by);
#endif
#ifdef __SSSE3__
    if constexpr (Lanes == 4)
        bytes = __builtin_ia32_pshufb128(bytes, by);
#endif
    same_bits(v, bytes);
}

// The sum of two products in every 32 bits.
template <int Lanes>
QZ_ALWAYS_INLINE void multiply_add(int_vec<Lanes> &sum, const short_vec<Lanes> &a, const short_vec<Lanes> &b)
{
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Lanes == 16)
        sum = __builtin_ia32_pmaddwd512_mask(a, b, int_vec<Lanes>{}, -1);
    if constexpr (Lanes == 8)
        sum = __builtin_ia32_pmaddwd256(a, b);
#endif
#ifdef __SSE2__
    if constexpr (Lanes == 4)
        sum = __builtin_ia32_pmaddwd128(a, b);
#endif
    if constexpr (!has_narrow_integers<Lanes>) {
        int_vec<Lanes> of_a, of_b;
        same_bits(of_a, a);
        same_bits(of_b, b);
        sum = (of_a >> 16) * (of_b >> 16) + (of_a << 16 >> 16) * (of_b << 16 >> 16);
    }
}

// Element of a packed vector of Count: in every quad the elements of a, then those of b, which count from Count / 2.
template <int Lanes, int Count>
constexpr int packed_source(int element)
{
    constexpr int half = Count / (Lanes / 4) / 2; // a quad
    const int within = element % (2 * half);
    return element / (2 * half) * half + within % half + (within < half ? 0 : Count / 2);
}

template <int Lanes, typename To, typename From, int... Element>
QZ_ALWAYS_INLINE void pack_plain(To &to, const From &a, const From &b, std::integer_sequence<int, Element...> /*of to*/)
{
    using half = vec_of<std::remove_cvref_t<decltype(to[0])>, sizeof...(Element) / 2>;
    to = __builtin_shufflevector(__builtin_convertvector(a, half), __builtin_convertvector(b, half),
                                 packed_source<Lanes, sizeof...(Element)>(Element)...);
}

// Numbers that fit half as many bits, of a and b by turns, quad by quad.
template <int Lanes>
QZ_ALWAYS_INLINE void pack(short_vec<Lanes> &to, const int_vec<Lanes> &a, const int_vec<Lanes> &b)
{
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Lanes == 16)
        to = __builtin_ia32_packssdw512_mask(a, b, short_vec<Lanes>{}, -1);
    if constexpr (Lanes == 8)
        to = __builtin_ia32_packssdw256(a, b);
#endif
#ifdef __SSE2__
    if constexpr (Lanes == 4)
        to = __builtin_ia32_packssdw128(a, b);
#endif
    if constexpr (!has_narrow_integers<Lanes>)
        pack_plain<Lanes>(to, a, b, std::make_integer_sequence<int, 2 * Lanes>());
}

template <int Lanes>
QZ_ALWAYS_INLINE void pack(byte_vec<Lanes> &to, const short_vec<Lanes> &a, const short_vec<Lanes> &b)
{
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Lanes == 16)
        same_bits(to, __builtin_ia32_packsswb512_mask(a, b, vec_of<char, 64>{}, -1));
    if constexpr (Lanes == 8)
        same_bits(to, __builtin_ia32_packsswb256(a, b));
#endif
#ifdef __SSE2__
    if constexpr (Lanes == 4)
        same_bits(to, __builtin_ia32_packsswb128(a, b));
#endif
    if constexpr (!has_narrow_integers<Lanes>)
        pack_plain<Lanes>(to, a, b, std::make_integer_sequence<int, 4 * Lanes>());
}

// All of a, then all of b.
template <int Lanes, typename Vector, int... Half>
QZ_ALWAYS_INLINE void order_halves(Vector &packed, std::integer_sequence<int, Half...> /*of quads*/)
{
    constexpr int quads = Lanes / 4;
    vec_of<int64_t, Lanes / 2> halves;
    same_bits(halves, packed);
    halves = __builtin_shufflevector(halves, halves, (Half < quads ? 2 * Half : 2 * (Half - quads) + 1)...);
    same_bits(packed, halves);
}

template <int Lanes, typename Vector>
QZ_ALWAYS_INLINE void order_packed(Vector &packed)
{
    order_halves<Lanes>(packed, std::make_integer_sequence<int, Lanes / 2>());
}

// Rounded towards 0; the lowest number for what is out of range.
template <int Lanes>
QZ_ALWAYS_INLINE void truncate(int_vec<Lanes> &to, const vec<Lanes> &from)
{
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Lanes == 16)
        to = __builtin_ia32_cvttps2dq512_mask(from, int_vec<Lanes>{}, -1, 4);
    if constexpr (Lanes == 8)
        to = __builtin_ia32_cvttps2dq256(from);
#endif
#ifdef __SSE2__
    if constexpr (Lanes == 4)
        to = __builtin_ia32_cvttps2dq(from);
#endif
    if constexpr (!has_narrow_integers<Lanes>)
        for (int lane = 0; lane < Lanes; ++lane)
            to[lane] = from[lane] >= -2147483648.0f && from[lane] < 2147483648.0f ? static_cast<int32_t>(from[lane])
                                                                                  : INT32_MIN;
}

// -1 where a >= b, 0 where not. Compilers take a comparison of vectors apart that are wider than the narrowest
// target's.
template <int Lanes>
QZ_ALWAYS_INLINE void at_least(int_vec<Lanes> &mask, const vec<Lanes> &a, const vec<Lanes> &b)
{
#if QZ_WIDE_INSTRUCTIONS
    constexpr int greater_or_equal = 13;
    if constexpr (Lanes == 16)
        mask = __builtin_ia32_cvtmask2d512(__builtin_ia32_cmpps512_mask(a, b, greater_or_equal, -1, 4));
    if constexpr (Lanes == 8)
        same_bits(mask, __builtin_ia32_cmpps256(a, b, greater_or_equal));
#endif
    if constexpr (Lanes == 4 || !QZ_WIDE_INSTRUCTIONS)
        mask = a >= b;
}

// a0 b0 a1 b1 .. of the lower halves of every quad, or of the upper ones.
template <int Lanes, bool Upper, int... Element>
QZ_ALWAYS_INLINE void interleave_elements(short_vec<Lanes> &to, const short_vec<Lanes> &a, const short_vec<Lanes> &b,
                                          std::integer_sequence<int, Element...> /*of to*/)
{
    to = __builtin_shufflevector(
        a, b, (Element / 8 * 8 + Element % 8 / 2 + (Upper ? 4 : 0) + (Element % 2 == 0 ? 0 : 2 * Lanes))...);
}

template <int Lanes, bool Upper>
QZ_ALWAYS_INLINE void interleave(short_vec<Lanes> &to, const short_vec<Lanes> &a, const short_vec<Lanes> &b)
{
    interleave_elements<Lanes, Upper>(to, a, b, std::make_integer_sequence<int, 2 * Lanes>());
}

} // namespace qz

#if QZ_WIDE_INSTRUCTIONS
#pragma GCC diagnostic pop
#endif
