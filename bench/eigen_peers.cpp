// EIGEN_PEERS is the namespace to define; a build for this processor also gives Eigen's own namespace another name, so
// that the two builds share no function.
#include "bench/eigen_peers.h"

#include <Eigen/Core>
#include <Eigen/LU>

namespace bench::EIGEN_PEERS {

namespace {

using matrix = Eigen::Matrix<float, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using source = Eigen::Map<const matrix>;
using target = Eigen::Map<matrix>;
using terms = Eigen::Matrix<float, polynomial_terms, 1>;
using normal_matrix = Eigen::Matrix<float, polynomial_terms, polynomial_terms, Eigen::RowMajor>;

terms terms_at(float x, float y)
{
    const float x2 = x * x;
    const float y2 = y * y;
    terms t;
    t << 1.0f, x, y, x2, x * y, y2, x2 * x, x2 * y, x * y2, y2 * y, x2 * x2, x2 * x * y, x2 * y2, x * y2 * y, y2 * y2;
    return t;
}

} // namespace

void multiply(const float *a, const float *b, float *c, int rows, int inner, int columns)
{
    target(c, rows, columns).noalias() = source(a, rows, inner) * source(b, inner, columns);
}

void transpose(const float *from, float *to, int rows, int columns)
{
    target(to, columns, rows).noalias() = source(from, rows, columns).transpose();
}

void factorise(const float *a, float *lu, int n)
{
    const Eigen::PartialPivLU<matrix> factors((source(a, n, n)));
    target(lu, n, n) = factors.matrixLU();
}

void factorise_normal(float *design, float *lu, int width, int height)
{
    target all(design, width * height, polynomial_terms);
    for (int y = 1; y <= height; ++y)
        for (int x = 1; x <= width; ++x)
            all.row((y - 1) * width + x - 1) = terms_at(static_cast<float>(x), static_cast<float>(y)).transpose();
    normal_matrix normal;
    normal.noalias() = all.transpose() * all;
    Eigen::Map<normal_matrix>(lu, polynomial_terms, polynomial_terms) =
        Eigen::PartialPivLU<normal_matrix>(normal).matrixLU();
}

void upscale(const float *design, const float *lu, const float *const *in, float *const *out, int in_w, int in_h,
             int out_w, int out_h)
{
    const source basis(design, in_w * in_h, polynomial_terms);
    const Eigen::Map<const normal_matrix> factors(lu, polynomial_terms, polynomial_terms);
    Eigen::Matrix<float, polynomial_terms, 4> sums;
    for (int c = 0; c < 4; ++c)
        sums.col(c).noalias() = basis.transpose() * Eigen::Map<const Eigen::VectorXf>(in[c], in_w * in_h);
    factors.triangularView<Eigen::UnitLower>().solveInPlace(sums);
    factors.triangularView<Eigen::Upper>().solveInPlace(sums);
    const Eigen::Matrix<float, 4, polynomial_terms> coefficients = sums.transpose();
    const float sx = static_cast<float>(in_w - 1) / static_cast<float>(out_w - 1);
    const float sy = static_cast<float>(in_h - 1) / static_cast<float>(out_h - 1);
    for (int j = 0; j < out_h; ++j) {
        for (int i = 0; i < out_w; ++i) {
            const Eigen::Vector4f sample =
                coefficients * terms_at(static_cast<float>(i) * sx + 1.0f, static_cast<float>(j) * sy + 1.0f);
            for (int c = 0; c < 4; ++c)
                out[c][j * out_w + i] = sample[c];
        }
    }
}

} // namespace bench::EIGEN_PEERS
