#include "util/simd/vector_bits.h"

extern "C" int qz_vector_bits()
{
#if QZ_WIDER_VECTORS
    if (QZ_MOST_VECTOR_BITS >= 512 && __builtin_cpu_supports("x86-64-v4") != 0)
        return 512;
    if (QZ_MOST_VECTOR_BITS >= 256 && __builtin_cpu_supports("x86-64-v3") != 0)
        return 256;
#endif
    return QZ_TARGET_VECTOR_BITS;
}
