// Cubics through four samples each, formed and evaluated several at a time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "util/simd/dispatch.h"
#include "util/simd/scalars.h"
#include "util/simd/vectors.h"

namespace qz {

// The cubic through samples q0 .. q3, from q1 at t = 0 to q2 at t = 1, by the Keys kernel with a = -0.5, is
// q1 + 0.5 t (b1 + t (b2 + t b3)). Real is double, float, or several of them.
template <typename Real>
QZ_ALWAYS_INLINE void form_b1(const Real &q0, const Real &q2, Real &b1)
{
    b1 = q2 - q0;
}

// 4 q2 + 2 q0 - 5 q1 - q3, in this order: doubling a sum rounds as adding what was doubled.
template <typename Real>
QZ_ALWAYS_INLINE void form_b2(const Real &q0, const Real &five_q1, const Real &q2, const Real &q3, Real &b2)
{
    b2 = 2.0f * (2.0f * q2 + q0) - five_q1 - q3;
}

template <typename Real>
QZ_ALWAYS_INLINE void form_b3(const Real &q0, const Real &q1, const Real &q2, const Real &q3, Real &b3)
{
    b3 = 3.0f * (q1 - q2) + q3 - q0;
}

template <typename Real>
QZ_ALWAYS_INLINE void form_cubic(const Real &q0, const Real &q1, const Real &q2, const Real &q3, Real &b1, Real &b2,
                                 Real &b3)
{
    form_b1<Real>(q0, q2, b1);
    form_b2<Real>(q0, 5.0f * q1, q2, q3, b2);
    form_b3<Real>(q0, q1, q2, q3, b3);
}

// T is Real or what it has several of.
template <typename Real, typename T>
QZ_ALWAYS_INLINE void evaluate_cubic(const Real &q1, const Real &b1, const Real &b2, const Real &b3, const T &t,
                                     const T &half_t, Real &value)
{
    value = q1 + half_t * (b1 + t * (b2 + t * b3));
}

template <typename Real, size_t Count>
struct cubics {
    Real b1[Count];
    Real b2[Count];
    Real b3[Count];
};

// The cubics through q0[i] .. q3[i], for count samples by a multiple of what Numbers has.
template <typename Numbers, typename Real, size_t Count>
QZ_ALWAYS_INLINE void form_cubics(const Real *q0, const Real *q1, const Real *q2, const Real *q3, size_t count,
                                  cubics<Real, Count> &to)
{
    constexpr size_t step = sizeof(Numbers) / sizeof(Real);
    for (size_t i = 0; i < count; i += step) {
        Numbers p0, p1, p2, p3, b1, b2, b3;
        load(p0, q0 + i);
        load(p1, q1 + i);
        load(p2, q2 + i);
        load(p3, q3 + i);
        form_cubic(p0, p1, p2, p3, b1, b2, b3);
        store(to.b1 + i, b1);
        store(to.b2 + i, b2);
        store(to.b3 + i, b3);
    }
}

// The same one by one: each coefficient by itself, as a chain of operations on what is in memory. Not to become part of
// a function that knows how the samples overlap: the compiler would keep them in registers, which are too few.
template <typename Real>
struct separate_coefficients {
    const Real *q0;
    const Real *q1;
    const Real *q2;
    const Real *q3;
    size_t count;

    template <int /*Lanes*/>
    QZ_ALWAYS_INLINE void run(Real *b1, Real *b2, Real *b3) const
    {
        scalars<Real, 4> p0, p1, p2, p3, b;
        for (size_t i = 0; i < count; i += 4) {
            load(p0, q0 + i);
            load(p2, q2 + i);
            form_b1(p0, p2, b);
            store(b1 + i, b);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(p1, q1 + i);
            store(b2 + i, 5.0f * p1);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(p0, q0 + i);
            load(p2, q2 + i);
            load(p3, q3 + i);
            load(b, b2 + i);
            form_b2(p0, b, p2, p3, b);
            store(b2 + i, b);
        }
        for (size_t i = 0; i < count; i += 4) {
            load(p0, q0 + i);
            load(p1, q1 + i);
            load(p2, q2 + i);
            load(p3, q3 + i);
            form_b3(p0, p1, p2, p3, b);
            store(b3 + i, b);
        }
    }
};

template <typename Numbers, typename Real, size_t Count>
requires one_by_one<Real> QZ_ALWAYS_INLINE void form_cubics(const Real *q0, const Real *q1, const Real *q2,
                                                            const Real *q3, size_t count, cubics<Real, Count> &to)
{
    run_doubles(separate_coefficients<Real>{q0, q1, q2, q3, count}, to.b1, to.b2, to.b3);
}

} // namespace qz
