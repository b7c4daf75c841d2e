#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/polynomial/polynomial_terms.h"
#include "util/simd/vectors.h"

namespace {

constexpr int32_t terms = qz::polynomial_terms;
constexpr int32_t float_size = sizeof(float);
constexpr int32_t row_size = terms * float_size;

// Columns of the grid worked on at a time.
constexpr uint32_t tile = 64;

// Exponents of x and y in each term, and one more that fills a vector.
constexpr int lanes = 16;
constexpr int exponent_x[lanes] = {0, 1, 0, 2, 1, 0, 3, 2, 1, 0, 4, 3, 2, 1, 0, 0};
constexpr int exponent_y[lanes] = {0, 0, 1, 0, 1, 2, 0, 1, 2, 3, 0, 1, 2, 3, 4, 0};

// A coordinate's factor of every term. Products wrap at 32 bits.
struct factors {
    uint32_t of_term[lanes];
};

QZ_ALWAYS_INLINE void fill(factors &f, uint32_t coordinate, const int (&exponent)[lanes])
{
    const uint32_t square = coordinate * coordinate;
    const uint32_t power[] = {1, coordinate, square, square * coordinate, square * square};
    for (int k = 0; k < lanes; ++k)
        f.of_term[k] = power[exponent[k]];
}

struct design_matrix {
    float *design;
    uint32_t width, height;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        factors of_x[tile];
        factors of_y;
        for (uint32_t first = 0; first < width; first += tile) {
            const uint32_t count = std::min(tile, width - first);
            for (uint32_t i = 0; i < count; ++i)
                fill(of_x[i], first + i + 1, exponent_x);
            for (uint32_t j = 0; j < height; ++j) {
                fill(of_y, j + 1, exponent_y);
                float *row = design + (static_cast<size_t>(j) * width + first) * terms;
                for (uint32_t i = 0; i + 1 < count; ++i, row += terms)
                    write_row<Lanes>(row, of_x[i], of_y); // the next row overwrites what is one too many
                float last[lanes];
                write_row<Lanes>(last, of_x[count - 1], of_y);
                memcpy(row, last, terms * sizeof(float));
            }
        }
    }

    // Products are read as signed: from coordinate 216 on fourth powers are beyond that.
    template <int Lanes>
    QZ_ALWAYS_INLINE static void write_row(float *to, const factors &x, const factors &y)
    {
        for (int k = 0; k < lanes; k += Lanes) {
            qz::int_vec<Lanes> product;
            qz::uint_vec<Lanes> of_x;
            qz::uint_vec<Lanes> of_y;
            memcpy(&of_x, x.of_term + k, sizeof of_x);
            memcpy(&of_y, y.of_term + k, sizeof of_y);
            of_x *= of_y;
            memcpy(&product, &of_x, sizeof product);
            qz::store(to + k, __builtin_convertvector(product, qz::vec<Lanes>));
        }
    }
};

} // namespace

uint32_t lu_decomposition(float *design, float *transposed, float *out, uint32_t *index, uint16_t width,
                          uint16_t height, uint16_t term_count)
{
    if (term_count != terms)
        return ISP_STEP_FAILED;
    auto *normal = static_cast<float *>(std::malloc(sizeof(float) * terms * terms));
    if (normal == nullptr)
        return ISP_OUT_OF_MEMORY;
    const auto points = static_cast<int32_t>(static_cast<uint32_t>(width) * height);
    const auto line = static_cast<int32_t>(static_cast<uint32_t>(points) * sizeof(float));
    qz::run_widest(design_matrix{design, width, height});
    uint32_t failed = transpose_m(design, row_size, float_size, terms, points, transposed, line, float_size);
    failed |= mul_mm(transposed, line, float_size, points, terms, design, row_size, float_size, terms, points, normal,
                     row_size, float_size);
    failed |= lu_decomposition_m(normal, row_size, float_size, index, out, row_size, float_size, terms);
    std::free(normal);
    return failed == ISP_SUCCESS ? ISP_SUCCESS : ISP_STEP_FAILED;
}
