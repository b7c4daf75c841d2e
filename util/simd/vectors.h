// Vectors of 4, 8 or 16 floats for the loops that a compiler does not turn into vectors by itself. They are handed on
// by reference, never by value: calls would then depend on the version of the processor.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "util/multiversion.h"

namespace qz {

template <typename T, int Lanes>
struct vector_of {
    using type [[gnu::vector_size(Lanes * sizeof(T))]] = T;
};
template <int Lanes>
using vec = typename vector_of<float, Lanes>::type;
template <int Lanes>
using int_vec = typename vector_of<int32_t, Lanes>::type;
template <int Lanes>
using uint_vec = typename vector_of<uint32_t, Lanes>::type;

template <int Lanes>
QZ_ALWAYS_INLINE void load(vec<Lanes> &v, const void *at)
{
    memcpy(&v, at, sizeof v);
}

template <int Lanes>
QZ_ALWAYS_INLINE void store(void *at, const vec<Lanes> &v)
{
    memcpy(at, &v, sizeof v);
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

// Rows of a square become its columns.
template <int Lanes>
QZ_ALWAYS_INLINE void transpose_square(vec<Lanes> (&row)[Lanes])
{
    for (int r = 0; r < Lanes; r += 4) { // 4 x 4 squares of every quad
        zip_pair<Lanes, zip::words>(row[r], row[r + 1]);
        zip_pair<Lanes, zip::words>(row[r + 2], row[r + 3]);
        zip_pair<Lanes, zip::halves>(row[r], row[r + 2]);
        zip_pair<Lanes, zip::halves>(row[r + 1], row[r + 3]);
        std::swap(row[r + 1], row[r + 2]);
    }
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
