// Blocks of 16 x 16 floats: what the matrix routines are made of, whatever the vector width.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "util/matrix/matrix_view.h"
#include "util/simd/vectors.h"

namespace qz {

inline constexpr int block_size = 16;
inline constexpr ptrdiff_t block_stride = block_size * sizeof(float); // bytes from one row of a block to the next

struct alignas(64) block {
    float row[block_size][block_size];

    target_view view() { return {reinterpret_cast<unsigned char *>(row), block_stride, sizeof(float)}; }
};

// Copies up to 16 floats, touching no others.
QZ_ALWAYS_INLINE void copy_floats(unsigned char *to, const unsigned char *from, ptrdiff_t count)
{
    constexpr ptrdiff_t one = sizeof(float);
    constexpr ptrdiff_t eight = 8 * one;
    constexpr ptrdiff_t four = 4 * one;
    const ptrdiff_t bytes = count * one;
    if (bytes >= eight) { // the first and the last eight, which may overlap
        memcpy(to, from, eight);
        memcpy(to + bytes - eight, from + bytes - eight, eight);
    } else if (bytes >= four) {
        memcpy(to, from, four);
        memcpy(to + bytes - four, from + bytes - four, four);
    } else {
        for (ptrdiff_t at = 0; at < bytes; at += one)
            memcpy(to + at, from + at, one);
    }
}

// to (r, c) = from (r, c) for up to 16 rows and columns.
template <typename Byte>
QZ_ALWAYS_INLINE void copy_block(const matrix_view<Byte> &from, const target_view &to, int columns, int rows)
{
    const bool dense_rows = from.column_stride == sizeof(float) && to.column_stride == sizeof(float);
    for (int r = 0; r < rows; ++r) {
        if (dense_rows)
            copy_floats(to.at(r, 0), from.at(r, 0), columns);
        else
            for (int c = 0; c < columns; ++c)
                memcpy(to.at(r, c), from.at(r, c), sizeof(float));
    }
}

// Reads 16 floats of each row and writes 16 of each column. Missing rows repeat the last one, missing columns stay
// unwritten.
template <int Lanes>
QZ_ALWAYS_INLINE void transpose_wide(const unsigned char *from, ptrdiff_t from_stride, unsigned char *to,
                                     ptrdiff_t to_stride, int columns, int rows)
{
    constexpr ptrdiff_t step = Lanes * sizeof(float);
    for (int i = 0; i < block_size / Lanes; ++i) {
        for (int j = 0; j < block_size / Lanes; ++j) {
            vec<Lanes> row[Lanes];
            for (int r = 0; r < Lanes; ++r)
                load(row[r], from + std::min(j * Lanes + r, rows - 1) * from_stride + i * step);
            transpose_square<Lanes>(row);
            for (int c = 0; c < Lanes; ++c)
                if (i * Lanes + c < columns)
                    store(to + (i * Lanes + c) * to_stride + j * step, row[c]);
        }
    }
}

// Up to 16 rows and columns of a source, both with dense rows. A row may be read_wide where 16 floats can be read from
// its start.
template <int Lanes>
QZ_ALWAYS_INLINE void transpose_block(const unsigned char *from, ptrdiff_t from_stride, unsigned char *to,
                                      ptrdiff_t to_stride, int columns, int rows, bool read_wide = false)
{
    block before;
    if (columns < block_size && !read_wide) {
        for (int r = 0; r < rows; ++r)
            copy_floats(before.view().at(r, 0), from + r * from_stride, columns);
        from = before.view().data;
        from_stride = block_stride;
    }
    if (rows == block_size) {
        transpose_wide<Lanes>(from, from_stride, to, to_stride, columns, rows);
        return;
    }
    block after;
    transpose_wide<Lanes>(from, from_stride, after.view().data, block_stride, columns, rows);
    for (int c = 0; c < columns; ++c)
        copy_floats(to + c * to_stride, after.view().at(c, 0), rows);
}

enum class sign { plus, minus };

// Adds the terms a[k][r] * b[k][c], k = 0, 1, ..., to element (r, c) of some rows and columns of a block, or to 0, in
// that order.
template <int Lanes, int Rows, int Vectors, sign Sign>
QZ_ALWAYS_INLINE void accumulate_part(unsigned char *c, ptrdiff_t c_stride, const float *a, const unsigned char *b,
                                      ptrdiff_t b_stride, int count, bool from_zero)
{
    constexpr ptrdiff_t step = sizeof(vec<Lanes>);
    vec<Lanes> sum[Rows][Vectors] = {};
    if (!from_zero)
        for (int r = 0; r < Rows; ++r)
            for (int v = 0; v < Vectors; ++v)
                load(sum[r][v], c + r * c_stride + v * step);
    for (int k = 0; k < count; ++k, a += block_size, b += b_stride) {
        for (int v = 0; v < Vectors; ++v) {
            vec<Lanes> terms;
            load(terms, b + v * step);
            for (int r = 0; r < Rows; ++r) {
                if constexpr (Sign == sign::plus)
                    sum[r][v] += a[r] * terms;
                else
                    sum[r][v] -= a[r] * terms;
            }
        }
    }
    for (int r = 0; r < Rows; ++r)
        for (int v = 0; v < Vectors; ++v)
            store(c + r * c_stride + v * step, sum[r][v]);
}

// The same for the first rows of a whole block, in parts whose sums fit the registers.
template <int Lanes, sign Sign>
QZ_ALWAYS_INLINE void accumulate(unsigned char *c, ptrdiff_t c_stride, const float *a, const unsigned char *b,
                                 ptrdiff_t b_stride, int count, int rows, bool from_zero)
{
    constexpr int part_rows = Lanes == 16 ? 16 : sizeof(void *) == 8 ? 4 : 2;
    constexpr int part_vectors = Lanes == 16 ? 1 : 2;
    constexpr int part_bytes = part_vectors * static_cast<int>(sizeof(vec<Lanes>));
    for (int r = 0; r < rows; r += part_rows)
        for (int at = 0; at < block_stride; at += part_bytes)
            accumulate_part<Lanes, part_rows, part_vectors, Sign>(c + r * c_stride + at, c_stride, a + r, b + at,
                                                                  b_stride, count, from_zero);
}

} // namespace qz
