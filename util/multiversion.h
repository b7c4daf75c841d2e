// Compiles a function once for each vector width of the processor and picks one when the library is loaded. Every
// version does the same operations in the same order on each output, so results do not depend on the processor.
// Only where the platform resolves functions at load time, and not under a sanitizer, whose runtime is not up by then.
#pragma once

#if defined(__x86_64__) && defined(__gnu_linux__) && defined(__GNUC__) && !defined(__clang__) &&                       \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QZ_MULTIVERSION __attribute__((target_clones("arch=x86-64-v4", "arch=x86-64-v3", "default")))
#else
#define QZ_MULTIVERSION
#endif
