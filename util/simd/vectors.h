// Vectors for the loops that a compiler does not turn into vectors by itself. They are handed on by reference, never by
// value: calls would then depend on the version of the processor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "util/simd/dispatch.h"

// One compiler lets a function that becomes part of a wide version call what only that version has.
#if defined(__GNUC__) && !defined(__clang__) && (QZ_WIDER_VECTORS || QZ_TARGET_VECTOR_BITS > 128)
#define QZ_WIDE_INSTRUCTIONS 1
#else
#define QZ_WIDE_INSTRUCTIONS 0
#endif

namespace qz {

template <typename T, int Lanes>
struct vector_of {
    using type [[gnu::vector_size(Lanes * sizeof(T))]] = T;
};
template <typename T, int Lanes>
using vec_of = typename vector_of<T, Lanes>::type;
template <int Lanes>
using vec = vec_of<float, Lanes>;
template <int Lanes>
using int_vec = vec_of<int32_t, Lanes>;
template <int Lanes>
using uint_vec = vec_of<uint32_t, Lanes>;

template <typename Vector>
QZ_ALWAYS_INLINE void load(Vector &v, const void *at)
{
    memcpy(&v, at, sizeof v);
}

template <typename Vector>
QZ_ALWAYS_INLINE void store(void *at, const Vector &v)
{
    memcpy(at, &v, sizeof v);
}

// As many numbers of another type, converted.
template <typename Vector, typename T>
QZ_ALWAYS_INLINE void load_converted(Vector &v, const T *at)
{
    vec_of<T, sizeof(Vector) / sizeof(v[0])> loaded;
    load(loaded, at);
    v = __builtin_convertvector(loaded, Vector);
}

template <typename Half, typename Vector, int... Element>
QZ_ALWAYS_INLINE void join(Vector &v, const Half &low, const Half &high,
                           std::integer_sequence<int, Element...> /*of v*/)
{
    v = __builtin_shufflevector(low, high, Element...);
}

// Quad i, 16 bytes, from element index[i * Every].
template <int Every = 1, typename Vector, typename T>
QZ_ALWAYS_INLINE void load_quads(Vector &v, const T *from, const uint32_t *index)
{
    constexpr int count = sizeof v / sizeof(v[0]);
    if constexpr (sizeof v == 16) {
        load(v, from + *index);
    } else {
        vec_of<std::remove_cvref_t<decltype(v[0])>, count / 2> low, high;
        load_quads<Every>(low, from, index);
        load_quads<Every>(high, from, index + Every * sizeof v / 32);
        join(v, low, high, std::make_integer_sequence<int, count>());
    }
}

// Whether load_picked() works.
template <int Lanes>
inline constexpr bool has_load_picked = QZ_WIDE_INSTRUCTIONS &&Lanes > 4;

#if QZ_WIDE_INSTRUCTIONS
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wpsabi" // of vectors that are handed on by value, which these calls are not
#endif

// Lane i from the element that choice i names, of as many as there are lanes.
template <int Lanes>
QZ_ALWAYS_INLINE void load_picked([[maybe_unused]] vec<Lanes> &to, const float *from,
                                  [[maybe_unused]] const int_vec<Lanes> &choice)
{
    vec<Lanes> loaded;
    load(loaded, from);
#if QZ_WIDE_INSTRUCTIONS
    if constexpr (Lanes == 16)
        to = __builtin_ia32_permvarsf512_mask(loaded, choice, loaded, -1);
    if constexpr (Lanes == 8)
        to = __builtin_ia32_permvarsf256(loaded, choice);
#endif
}

#if QZ_WIDE_INSTRUCTIONS
#pragma GCC diagnostic pop
#endif

// Quad i from element i * stride.
template <typename Vector, typename T>
QZ_ALWAYS_INLINE void load_strided_quads(Vector &v, const T *from, size_t stride)
{
    constexpr int count = sizeof v / sizeof(v[0]);
    if constexpr (sizeof v == 16) {
        load(v, from);
    } else {
        vec_of<std::remove_cvref_t<decltype(v[0])>, count / 2> low, high;
        load_strided_quads(low, from, stride);
        load_strided_quads(high, from + sizeof v / 32 * stride, stride);
        join(v, low, high, std::make_integer_sequence<int, count>());
    }
}

// Elements 0, 2, 4, .. of a and b, or with Offset 1 those between.
template <int Offset, typename Vector, int... Element>
QZ_ALWAYS_INLINE void every_second_of(Vector &to, const Vector &a, const Vector &b,
                                      std::integer_sequence<int, Element...> /*of to*/)
{
    to = __builtin_shufflevector(a, b, (2 * Element + Offset)...);
}

template <int Offset, typename Vector>
QZ_ALWAYS_INLINE void every_second(Vector &to, const Vector &a, const Vector &b)
{
    every_second_of<Offset>(to, a, b, std::make_integer_sequence<int, sizeof a / sizeof(a[0])>());
}

// Lane i of a and of b from element i * stride and the one after it.
QZ_ALWAYS_INLINE void load_strided_pairs(vec<4> &a, vec<4> &b, const float *from, size_t stride)
{
    vec<4> pairs[2];
    for (vec<4> &two : pairs) {
        double low, high; // two floats each
        memcpy(&low, from, sizeof low);
        memcpy(&high, from + stride, sizeof high);
        const vec_of<double, 2> both = {low, high};
        memcpy(&two, &both, sizeof both);
        from += 2 * stride;
    }
    every_second<0>(a, pairs[0], pairs[1]);
    every_second<1>(b, pairs[0], pairs[1]);
}

// Lanes of a where the mask is -1 and of b where it is 0. Masks come from memory: a comparison of vectors wider than
// the narrowest target's is taken apart, lane by lane.
template <int Lanes>
QZ_ALWAYS_INLINE void select(vec<Lanes> &to, const int_vec<Lanes> &mask, const vec<Lanes> &a, const vec<Lanes> &b)
{
    int_vec<Lanes> bits_a;
    int_vec<Lanes> bits_b;
    memcpy(&bits_a, &a, sizeof bits_a);
    memcpy(&bits_b, &b, sizeof bits_b);
    bits_a = (bits_a & mask) | (bits_b & ~mask);
    memcpy(&to, &bits_a, sizeof to);
}

// Pairs of vectors a, b become (low, high) by one of three patterns, each one instruction. A quad is four lanes.
enum class zip { words, halves, quads };

// Source of a lane of the low (0) or high (1) result; lanes of b count from Lanes.
template <int Lanes, zip How>
constexpr int zip_source(int lane, int high)
{
    const int quad = lane / 4;
    const int within = lane % 4;
    if (How == zip::words) // a0 b0 a1 b1 of every quad, then a2 b2 a3 b3
        return quad * 4 + 2 * high + within / 2 + within % 2 * Lanes;
    if (How == zip::halves) // a0 a1 b0 b1 of every quad, then a2 a3 b2 b3
        return quad * 4 + 2 * high + within % 2 + within / 2 * Lanes;
    const int half = Lanes / 8; // even quads of a, then of b; then the odd ones
    // cppcheck-suppress zerodiv ; vectors of one quad have no pattern of quads
    return quad / half * Lanes + (quad % half * 2 + high) * 4 + within;
}

template <int Lanes, zip How, int... Lane>
QZ_ALWAYS_INLINE void zip_lanes(vec<Lanes> &a, vec<Lanes> &b, std::integer_sequence<int, Lane...> /*lanes*/)
{
    const vec<Lanes> low = __builtin_shufflevector(a, b, zip_source<Lanes, How>(Lane, 0)...);
    b = __builtin_shufflevector(a, b, zip_source<Lanes, How>(Lane, 1)...);
    a = low;
}

template <int Lanes, zip How>
QZ_ALWAYS_INLINE void zip_pair(vec<Lanes> &a, vec<Lanes> &b)
{
    zip_lanes<Lanes, How>(a, b, std::make_integer_sequence<int, Lanes>());
}

// Lane i of row k of every quad becomes lane k of its row i.
template <int Lanes>
QZ_ALWAYS_INLINE void transpose_quads(vec<Lanes> &r0, vec<Lanes> &r1, vec<Lanes> &r2, vec<Lanes> &r3)
{
    zip_pair<Lanes, zip::words>(r0, r1);
    zip_pair<Lanes, zip::words>(r2, r3);
    zip_pair<Lanes, zip::halves>(r0, r2);
    zip_pair<Lanes, zip::halves>(r1, r3);
    std::swap(r1, r2);
}

// Rows of a square become its columns.
template <int Lanes>
QZ_ALWAYS_INLINE void transpose_square(vec<Lanes> (&row)[Lanes])
{
    for (int r = 0; r < Lanes; r += 4)
        transpose_quads<Lanes>(row[r], row[r + 1], row[r + 2], row[r + 3]);
    if constexpr (Lanes >= 8) { // then the quads themselves
        for (int r = 0; r < 4; ++r) {
            zip_pair<Lanes, zip::quads>(row[r], row[r + 4]);
            if constexpr (Lanes == 16) {
                zip_pair<Lanes, zip::quads>(row[r + 8], row[r + 12]);
                zip_pair<Lanes, zip::quads>(row[r], row[r + 8]);
                zip_pair<Lanes, zip::quads>(row[r + 4], row[r + 12]);
            }
        }
    }
}

} // namespace qz
