#include <cstdlib>

#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/polynomial_terms.h"

namespace {

constexpr int32_t terms = qz::polynomial_terms;
constexpr int32_t float_size = sizeof(float);
constexpr int32_t row_size = terms * float_size;

// Products wrap at 32 bits and are read as signed: grids wider than 215 (or higher) have fourth powers beyond that.
void write_design_row(float *row, uint32_t x, uint32_t y)
{
    const uint32_t powers[terms] = {1,
                                    x,
                                    y,
                                    x * x,
                                    x * y,
                                    y * y,
                                    x * x * x,
                                    x * x * y,
                                    x * y * y,
                                    y * y * y,
                                    x * x * x * x,
                                    x * x * x * y,
                                    x * x * y * y,
                                    x * y * y * y,
                                    y * y * y * y};
    for (int32_t k = 0; k < terms; ++k)
        row[k] = static_cast<float>(static_cast<int32_t>(powers[k]));
}

void write_design(float *design, uint16_t width, uint16_t height)
{
    for (uint32_t y = 1; y <= height; ++y) {
        for (uint32_t x = 1; x <= width; ++x) {
            write_design_row(design, x, y);
            design += terms;
        }
    }
}

} // namespace

uint32_t lu_decomposition(float *design, float *transposed, float *out, uint32_t *index, uint16_t width,
                          uint16_t height, uint16_t term_count)
{
    if (term_count != terms)
        return ISP_STEP_FAILED;
    auto *normal = static_cast<float *>(malloc(sizeof(float) * terms * terms));
    if (normal == nullptr)
        return ISP_OUT_OF_MEMORY;
    const auto points = static_cast<int32_t>(static_cast<uint32_t>(width) * height);
    const auto line = static_cast<int32_t>(static_cast<uint32_t>(points) * sizeof(float));
    write_design(design, width, height);
    uint32_t failed = transpose_m(design, row_size, float_size, terms, points, transposed, line, float_size);
    failed |= mul_mm(transposed, line, float_size, points, terms, design, row_size, float_size, terms, points, normal,
                     row_size, float_size);
    failed |= lu_decomposition_m(normal, row_size, float_size, index, out, row_size, float_size, terms);
    free(normal);
    return failed == ISP_SUCCESS ? ISP_SUCCESS : ISP_STEP_FAILED;
}
