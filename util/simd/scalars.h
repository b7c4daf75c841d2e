// Numbers that are computed one by one, several by turns: a processor that works in order has the others to do while it
// waits for the result of one. With eight registers a loop is best one chain of operations whose other operands are in
// memory.
#pragma once

#include <type_traits>

#include "util/simd/vectors.h"

namespace qz {

template <typename T>
inline constexpr bool one_by_one = QZ_ONE_BY_ONE &&std::is_same_v<T, double>;

template <typename T, int Count>
struct scalars {
    T number[Count];
};

template <typename T, int Count>
QZ_ALWAYS_INLINE void load(scalars<T, Count> &s, const T *at)
{
    for (int i = 0; i < Count; ++i)
        s.number[i] = at[i];
}

// Number i from element index[i].
template <typename T, int Count>
QZ_ALWAYS_INLINE void load_at(scalars<T, Count> &s, const T *from, const uint32_t *index)
{
    for (int i = 0; i < Count; ++i)
        s.number[i] = from[index[i]];
}

template <typename T, int Count>
QZ_ALWAYS_INLINE void store(T *at, const scalars<T, Count> &s)
{
    for (int i = 0; i < Count; ++i)
        at[i] = s.number[i];
}

template <typename T, int Count>
QZ_ALWAYS_INLINE scalars<T, Count> operator+(scalars<T, Count> a, const scalars<T, Count> &b)
{
    for (int i = 0; i < Count; ++i)
        a.number[i] += b.number[i];
    return a;
}

template <typename T, int Count>
QZ_ALWAYS_INLINE scalars<T, Count> operator+(scalars<T, Count> a, std::type_identity_t<T> b)
{
    for (int i = 0; i < Count; ++i)
        a.number[i] += b;
    return a;
}

template <typename T, int Count>
QZ_ALWAYS_INLINE scalars<T, Count> operator-(scalars<T, Count> a, const scalars<T, Count> &b)
{
    for (int i = 0; i < Count; ++i)
        a.number[i] -= b.number[i];
    return a;
}

template <typename T, int Count>
QZ_ALWAYS_INLINE scalars<T, Count> operator*(const scalars<T, Count> &a, scalars<T, Count> b)
{
    for (int i = 0; i < Count; ++i)
        b.number[i] *= a.number[i];
    return b;
}

template <typename T, int Count>
QZ_ALWAYS_INLINE scalars<T, Count> operator*(std::type_identity_t<T> a, scalars<T, Count> b)
{
    for (int i = 0; i < Count; ++i)
        b.number[i] *= a;
    return b;
}

// Conversions are cheaper side by side.
QZ_ALWAYS_INLINE void store_converted(double *at, const vec<4> &v)
{
    const vec_of<double, 4> converted = __builtin_convertvector(v, vec_of<double, 4>);
    store(at, __builtin_shufflevector(converted, converted, 0, 1));
    store(at + 2, __builtin_shufflevector(converted, converted, 2, 3));
}
QZ_ALWAYS_INLINE void load_converted(vec<4> &v, const double *at)
{
    vec_of<double, 4> loaded;
    load(loaded, at);
    v = __builtin_convertvector(loaded, vec<4>);
}

} // namespace qz
