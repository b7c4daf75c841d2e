// Eigen's side of the matrix and polynomial benchmarks. eigen_peers.cpp is compiled twice: as any program would be, and
// with every instruction of this processor.
#pragma once

#include <cstdint>

namespace bench {

inline constexpr int polynomial_terms = 15;

// Row-major matrices throughout.
#define QZ_BENCH_EIGEN_PEERS                                                                                           \
    void multiply(const float *a, const float *b, float *c, int rows, int inner, int columns);                         \
    void transpose(const float *from, float *to, int rows, int columns);                                               \
    void factorise(const float *a, float *lu, int n);                                                                  \
    void factorise_normal(float *design, float *lu, int width, int height);                                            \
    void upscale(const float *design, const float *lu, const float *const *in, float *const *out, int in_w, int in_h,  \
                 int out_w, int out_h);

namespace eigen_plain {
QZ_BENCH_EIGEN_PEERS
}

namespace eigen_native {
QZ_BENCH_EIGEN_PEERS
}

} // namespace bench
