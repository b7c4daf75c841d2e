// How wide the vectors are that the processor has.
#pragma once

// In vectors of the compiler's target.
#if defined(__AVX512BW__)
#define QZ_TARGET_VECTOR_BITS 512
#elif defined(__AVX2__)
#define QZ_TARGET_VECTOR_BITS 256
#else
#define QZ_TARGET_VECTOR_BITS 128
#endif

// Wider ones are chosen when the program runs, where one compiler and one family of processors have them. Compiled for
// a processor of one's own choice (-march) there is nothing to choose; where branches are counted there is one version
// of each.
#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__) && !defined(__SSE4_2__) && !defined(QZ_COVERAGE)
#define QZ_WIDER_VECTORS 1
#else
#define QZ_WIDER_VECTORS 0
#endif

// Processors of 32-bit targets work in order, and take longer for two doubles side by side than for one after the
// other.
#if defined(__i386__) && defined(__SSE2__)
#define QZ_ONE_BY_ONE 1
#else
#define QZ_ONE_BY_ONE 0
#endif

// 512 (x86-64-v4), 256 (x86-64-v3) or what the compiler's target has; a build can set a limit (QZ_ISP_VECTOR_BITS).
// A function that is called, never inlined, so that the linker can wrap it: tests try every width up to the machine's.
extern "C" int qz_vector_bits();
