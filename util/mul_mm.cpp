#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/matrix_view.h"

namespace {

float dot(const qz::source_view &a, const qz::source_view &b, int32_t row, int32_t column, int32_t count)
{
    float sum = 0.0f;
    for (int32_t k = 0; k < count; ++k)
        sum += qz::load_float(a.at(row, k)) * qz::load_float(b.at(k, column));
    return sum;
}

} // namespace

uint32_t mul_mm(const void *a, int32_t a_row_stride, int32_t a_column_stride, int32_t a_columns, int32_t a_rows,
                const void *b, int32_t b_row_stride, int32_t b_column_stride, int32_t b_columns, int32_t b_rows,
                void *c, int32_t c_row_stride, int32_t c_column_stride)
{
    if (a_columns != b_rows)
        return ISP_INVALID_ARGUMENT;
    const qz::source_view left = qz::source(a, a_row_stride, a_column_stride);
    const qz::source_view right = qz::source(b, b_row_stride, b_column_stride);
    const qz::target_view product = qz::target(c, c_row_stride, c_column_stride);
    for (int32_t i = 0; i < a_rows; ++i)
        for (int32_t j = 0; j < b_columns; ++j)
            qz::store_float(product.at(i, j), dot(left, right, i, j, a_columns));
    return ISP_SUCCESS;
}
