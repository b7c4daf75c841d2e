#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/matrix_view.h"

namespace {

void transpose_plain(const qz::source_view &from, const qz::target_view &to, int32_t columns, int32_t rows)
{
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < columns; ++c)
            memcpy(to.at(c, r), from.at(r, c), sizeof(float));
}

} // namespace

uint32_t transpose_m(const void *src, int32_t src_row_stride, int32_t src_column_stride, int32_t columns, int32_t rows,
                     void *dst, int32_t dst_row_stride, int32_t dst_column_stride)
{
    transpose_plain(qz::source(src, src_row_stride, src_column_stride),
                    qz::target(dst, dst_row_stride, dst_column_stride), columns, rows);
    return ISP_SUCCESS;
}
