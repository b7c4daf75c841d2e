#include <algorithm>
#include <cstdlib>

#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/matrix/block.h"

namespace {

using qz::block_size;
using qz::block_stride;

constexpr ptrdiff_t dense = sizeof(float);

// What of the inner dimension and of A's rows is worked on at a time: it fits the first-level cache.
constexpr int slice_depth = 128;
constexpr int slice_blocks = 4;

// Rows of B farther apart than this are packed: many of them would fall on the same few cache lines.
constexpr ptrdiff_t longest_stride = 512;

// Up to 16 rows or columns of a slice, 16 floats for each step of the inner dimension.
struct alignas(64) panel {
    float step[slice_depth][block_size];

    unsigned char *at(int k) { return reinterpret_cast<unsigned char *>(step[k]); }
};

// Steps of the inner dimension are the view's rows. Floats beyond the count are not used: they may be any.
template <int Lanes>
QZ_ALWAYS_INLINE void pack(panel &to, const qz::source_view &from, int depth, int count)
{
    if (from.column_stride == dense) {
        for (int k = 0; k < depth; ++k)
            qz::copy_floats(to.at(k), from.at(k, 0), count);
    } else if (from.row_stride == dense) {
        int k = 0;
        for (; k + block_size <= depth; k += block_size)
            qz::transpose_wide<Lanes>(from.at(k, 0), from.column_stride, to.at(k), block_stride, block_size, count);
        if (k < depth)
            qz::transpose_block<Lanes>(from.at(k, 0), from.column_stride, to.at(k), block_stride, depth - k, count);
    } else {
        for (int k = 0; k < depth; ++k)
            for (int i = 0; i < count; ++i)
                to.step[k][i] = qz::load_float(from.at(k, i));
    }
}

struct product {
    qz::source_view a, b;
    qz::target_view c;
    int32_t rows, depth, columns;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        panel left[slice_blocks];
        panel right;
        clear_unused(left, right);
        for (int32_t i = 0; i < rows; i += slice_blocks * block_size) {
            const int blocks = (std::min(slice_blocks * block_size, rows - i) + block_size - 1) / block_size;
            for (int32_t k = 0; k < depth; k += slice_depth) {
                const int steps = std::min(slice_depth, depth - k);
                for (int p = 0; p < blocks; ++p)
                    pack<Lanes>(left[p], a.from(i + p * block_size, k).transposed(), steps, rows_from(i, p));
                for (int32_t j = 0; j < columns; j += block_size) {
                    const qz::source_view steps_of_b = right_hand<Lanes>(right, k, j, steps);
                    for (int p = 0; p < blocks; ++p)
                        add_slice<Lanes>(left[p], steps_of_b, i + p * block_size, j, steps, k == 0);
                }
            }
        }
    }

    int rows_from(int32_t i, int p) const { return std::min(block_size, rows - i - p * block_size); }

    // The panels whose 16 floats are not all packed hold something from the start.
    void clear_unused(panel (&left)[slice_blocks], panel &right) const
    {
        if (rows % block_size != 0)
            left[rows / block_size % slice_blocks] = {};
        if (columns % block_size != 0)
            right = {};
    }

    // Where 16 floats of each step of B can be read: in place where they lie side by side, else in the panel.
    template <int Lanes>
    QZ_ALWAYS_INLINE qz::source_view right_hand(panel &right, int32_t k, int32_t j, int steps) const
    {
        const bool whole = columns - j >= block_size;
        const bool gapless = b.row_stride == columns * dense && columns >= block_size - 1 && k + steps < depth;
        if (b.column_stride == dense && (whole || gapless) && std::abs(b.row_stride) <= longest_stride)
            return b.from(k, j);
        pack<Lanes>(right, b.from(k, j), steps, std::min(block_size, columns - j));
        return {right.at(0), block_stride, dense};
    }

    // Adds a slice's terms to one block of the product.
    template <int Lanes>
    QZ_ALWAYS_INLINE void add_slice(panel &left, const qz::source_view &right, int32_t i, int32_t j, int steps,
                                    bool first) const
    {
        const int block_rows = std::min(block_size, rows - i);
        const int block_columns = std::min(block_size, columns - j);
        if (block_rows == block_size && block_columns == block_size && c.column_stride == dense) {
            qz::accumulate<Lanes, qz::sign::plus>(c.at(i, j), c.row_stride, left.step[0], right.data, right.row_stride,
                                                  steps, block_rows, first);
            return;
        }
        qz::block sum = {};
        if (!first)
            qz::copy_block(c.from(i, j), sum.view(), block_columns, block_rows);
        qz::accumulate<Lanes, qz::sign::plus>(sum.view().data, block_stride, left.step[0], right.data, right.row_stride,
                                              steps, block_rows, first);
        qz::copy_block(sum.view(), c.from(i, j), block_columns, block_rows);
    }
};

float dot(const qz::source_view &a, const qz::source_view &b, int32_t row, int32_t column, int32_t count)
{
    float sum = 0.0f;
    for (int32_t k = 0; k < count; ++k)
        sum += qz::load_float(a.at(row, k)) * qz::load_float(b.at(k, column));
    return sum;
}

void multiply_plain(const product &p)
{
    for (int32_t i = 0; i < p.rows; ++i)
        for (int32_t j = 0; j < p.columns; ++j)
            qz::store_float(p.c.at(i, j), dot(p.a, p.b, i, j, p.depth));
}

} // namespace

uint32_t mul_mm(const void *a, int32_t a_row_stride, int32_t a_column_stride, int32_t a_columns, int32_t a_rows,
                const void *b, int32_t b_row_stride, int32_t b_column_stride, int32_t b_columns, int32_t b_rows,
                void *c, int32_t c_row_stride, int32_t c_column_stride)
{
    if (a_columns != b_rows)
        return ISP_INVALID_ARGUMENT;
    if (a_rows <= 0 || b_columns <= 0)
        return ISP_SUCCESS;
    const product p = {qz::source(a, a_row_stride, a_column_stride),
                       qz::source(b, b_row_stride, b_column_stride),
                       qz::target(c, c_row_stride, c_column_stride),
                       a_rows,
                       a_columns,
                       b_columns};
    if (a_columns <= 0 || !apart(p.c, a_rows, b_columns) || touch(p.c, a_rows, b_columns, p.a, a_rows, a_columns) ||
        touch(p.c, a_rows, b_columns, p.b, b_rows, b_columns))
        multiply_plain(p);
    else
        qz::run_widest(p);
    return ISP_SUCCESS;
}
