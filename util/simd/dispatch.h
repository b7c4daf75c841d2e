// Compiles a job once for each vector width and runs the version that suits the processor. Every version does the same
// operations in the same order on each output, so results do not depend on the processor.
#pragma once

#include <utility>

#include "util/simd/vector_bits.h"

// For everything that a job calls: it must become part of each version. Where branches are counted it stays one
// function, so that a branch counts once, whoever calls.
#ifdef QZ_COVERAGE
#define QZ_ALWAYS_INLINE inline
#else
#define QZ_ALWAYS_INLINE [[gnu::always_inline]] inline
#endif

namespace qz {

// Floats in a vector of the compiler's target.
inline constexpr int target_lanes = QZ_TARGET_VECTOR_BITS / 32;

#if QZ_WIDER_VECTORS
template <typename Job, typename... Args>
[[gnu::target("arch=x86-64-v4"), gnu::noinline]] auto run_16_lanes(const Job &job, Args &&...args)
{
    return job.template run<16>(std::forward<Args>(args)...);
}

template <typename Job, typename... Args>
[[gnu::target("arch=x86-64-v3"), gnu::noinline]] auto run_8_lanes(const Job &job, Args &&...args)
{
    return job.template run<8>(std::forward<Args>(args)...);
}
#endif

// Calls job.run<lanes>(args...) with as many floats a vector as the processor has: for what depends on the width.
template <typename Job, typename... Args>
auto run_widest(const Job &job, Args &&...args)
{
#if QZ_WIDER_VECTORS
    switch (qz_vector_bits()) {
    case 512: return run_16_lanes(job, std::forward<Args>(args)...);
    case 256: return run_8_lanes(job, std::forward<Args>(args)...);
    default: break;
    }
#endif
    return job.template run<target_lanes>(std::forward<Args>(args)...);
}

// The same for a job whose numbers are doubles. Where they are computed one by one, the compiler must not put them side
// by side: it is told of a processor that is slower so.
#if QZ_ONE_BY_ONE
template <typename Job, typename... Args>
[[gnu::target("tune=bonnell"), gnu::noinline]] auto run_doubles(const Job &job, Args &&...args)
{
    return job.template run<target_lanes>(std::forward<Args>(args)...);
}
#else
template <typename Job, typename... Args>
auto run_doubles(const Job &job, Args &&...args)
{
    return run_widest(job, std::forward<Args>(args)...);
}
#endif

template <auto Loop>
struct loop_job {
    template <int /*Lanes*/, typename... Args>
    QZ_ALWAYS_INLINE auto run(Args &&...args) const
    {
        return Loop(std::forward<Args>(args)...);
    }
};

// Calls Loop(args...), a QZ_ALWAYS_INLINE function whose loops the compiler itself turns into vectors.
template <auto Loop, typename... Args>
auto run_loop(Args &&...args)
{
    return run_widest(loop_job<Loop>(), std::forward<Args>(args)...);
}

} // namespace qz
