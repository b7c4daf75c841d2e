// Compiles a function once for each vector width of the processor and picks one when the library is loaded. Every
// version does the same operations in the same order on each output, so results do not depend on the processor.
// Only where the platform resolves functions at load time, and not under a sanitizer, whose runtime is not up by then.
#pragma once

// Compiled for a processor of one's own choice (-march), there is nothing to choose.
#if defined(__x86_64__) && defined(__gnu_linux__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SSE4_2__)
#define QZ_WIDER_TARGETS 1
#else
#define QZ_WIDER_TARGETS 0
#endif

#if QZ_WIDER_TARGETS && !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QZ_MULTIVERSION __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QZ_MULTIVERSION
#endif

// For everything that a function with several versions calls: it must become part of each version. Where branches are
// counted it stays one function, so that a branch counts once, whoever calls.
#ifdef QZ_COVERAGE
#define QZ_ALWAYS_INLINE inline
#else
#define QZ_ALWAYS_INLINE [[gnu::always_inline]] inline
#endif

namespace qz {

#if QZ_WIDER_TARGETS
template <typename Job>
[[gnu::target("arch=x86-64-v4"), gnu::noinline]] void run_16_lanes(const Job &job)
{
    job.template run<16>();
}

template <typename Job>
[[gnu::target("arch=x86-64-v3"), gnu::noinline]] void run_8_lanes(const Job &job)
{
    job.template run<8>();
}
#endif

// Runs job.run<lanes>() with as many floats a vector as the processor has; for loops whose shape depends on the width.
template <typename Job>
void run_widest(const Job &job)
{
#if QZ_WIDER_TARGETS
    if (__builtin_cpu_supports("x86-64-v4"))
        return run_16_lanes(job);
    if (__builtin_cpu_supports("x86-64-v3"))
        return run_8_lanes(job);
#endif
#if defined(__AVX512F__)
    job.template run<16>();
#elif defined(__AVX__)
    job.template run<8>();
#else
    job.template run<4>();
#endif
}

} // namespace qz
