// Four numbers side by side.
#pragma once

#include <cstring>

namespace qz {

using f32x4 = float __attribute__((vector_size(16)));
using f64x4 = double __attribute__((vector_size(32)));

[[gnu::always_inline]] inline void convert4(f32x4 from, f32x4 &to)
{
    to = from;
}

[[gnu::always_inline]] inline void convert4(f32x4 from, f64x4 &to)
{
    to = f64x4{from[0], from[1], from[2], from[3]};
}

template <typename Real>
struct four;
template <>
struct four<float> {
    using type = f32x4;
};
template <>
struct four<double> {
    using type = f64x4;
};

inline f32x4 load4(const float *from)
{
    f32x4 value;
    std::memcpy(&value, from, sizeof value);
    return value;
}

inline void store4(float *to, f32x4 value)
{
    std::memcpy(to, &value, sizeof value);
}

// Afterwards lane i of row k is what lane k of row i was.
[[gnu::always_inline]] inline void transpose4(f32x4 &r0, f32x4 &r1, f32x4 &r2, f32x4 &r3)
{
    const f32x4 low01 = __builtin_shufflevector(r0, r1, 0, 4, 1, 5);
    const f32x4 high01 = __builtin_shufflevector(r0, r1, 2, 6, 3, 7);
    const f32x4 low23 = __builtin_shufflevector(r2, r3, 0, 4, 1, 5);
    const f32x4 high23 = __builtin_shufflevector(r2, r3, 2, 6, 3, 7);
    r0 = __builtin_shufflevector(low01, low23, 0, 1, 4, 5);
    r1 = __builtin_shufflevector(low01, low23, 2, 3, 6, 7);
    r2 = __builtin_shufflevector(high01, high23, 0, 1, 4, 5);
    r3 = __builtin_shufflevector(high01, high23, 2, 3, 6, 7);
}

} // namespace qz
