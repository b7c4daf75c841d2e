#include <algorithm>

#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/matrix/block.h"
#include "util/matrix/transpose.h"

namespace qz {

namespace {

constexpr ptrdiff_t dense = sizeof(float);

void transpose_plain(const source_view &from, const target_view &to, int32_t columns, int32_t rows)
{
    for (int32_t r = 0; r < rows; ++r)
        for (int32_t c = 0; c < columns; ++c)
            memcpy(to.at(c, r), from.at(r, c), sizeof(float));
}

void copy_rows(const source_view &from, const target_view &to, int32_t columns, int32_t rows)
{
    const size_t bytes = static_cast<size_t>(columns) * sizeof(float);
    for (int32_t r = 0; r < rows; ++r) {
        if (columns <= block_size)
            copy_floats(to.at(0, r), from.at(r, 0), columns);
        else
            memcpy(to.at(0, r), from.at(r, 0), bytes);
    }
}

// Source and target with dense rows. Each row of the target is finished before the next 16 begin, so that whole cache
// lines leave.
struct block_transposition {
    source_view from;
    target_view to;
    int32_t columns, rows;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        // Without gaps between the rows, what is read beyond a row's end is the next one.
        const bool gapless = from.row_stride == columns * dense && columns >= block_size - 1;
        for (int32_t c = 0; c < columns; c += block_size)
            for (int32_t r = 0; r < rows; r += block_size)
                transpose_block<Lanes>(from.at(r, c), from.row_stride, to.at(c, r), to.row_stride,
                                       std::min(block_size, columns - c), std::min(block_size, rows - r),
                                       gapless && rows - r > block_size);
    }
};

} // namespace

void transpose(const source_view &from, const target_view &to, int32_t columns, int32_t rows)
{
    if (columns <= 0 || rows <= 0)
        return;
    const bool separate = apart(to, columns, rows) && !touch(from, rows, columns, to, columns, rows);
    if (separate && from.column_stride == dense && to.column_stride == dense)
        run_widest(block_transposition{from, to, columns, rows});
    else if (separate && from.row_stride == dense && to.row_stride == dense)
        run_widest(block_transposition{from.transposed(), to.transposed(), rows, columns});
    else if (separate && from.column_stride == dense && to.row_stride == dense)
        copy_rows(from, to, columns, rows);
    else
        transpose_plain(from, to, columns, rows);
}

} // namespace qz

uint32_t transpose_m(const void *src, int32_t src_row_stride, int32_t src_column_stride, int32_t columns, int32_t rows,
                     void *dst, int32_t dst_row_stride, int32_t dst_column_stride)
{
    qz::transpose(qz::source(src, src_row_stride, src_column_stride),
                  qz::target(dst, dst_row_stride, dst_column_stride), columns, rows);
    return ISP_SUCCESS;
}
