/**
 * @file
 * Small dense single-precision matrices, addressed with byte strides.
 *
 * A matrix view is five consecutive arguments: data (address of element (0, 0)), row stride (bytes from an element to
 * the one below it), column stride (bytes to the one at its right), columns, rows. Strides may be any number, negative
 * and unaligned ones included. A destination is data, row stride and column stride; its size follows from the inputs.
 */
#ifndef QZ_ISP_MATRIX_H
#define QZ_ISP_MATRIX_H

#include <stdint.h>

#include "qz_isp/export.h"

/** destination (c, r) = source (r, c). @return ISP_SUCCESS */
QZ_ISP_API uint32_t transpose_m(const void *src, int32_t src_row_stride, int32_t src_column_stride, int32_t columns,
                                int32_t rows, void *dst, int32_t dst_row_stride, int32_t dst_column_stride);

/**
 * C = A x B. Each element is accumulated from 0 in single precision, in increasing order of the inner index.
 *
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when A's columns differ from B's rows
 */
QZ_ISP_API uint32_t mul_mm(const void *a, int32_t a_row_stride, int32_t a_column_stride, int32_t a_columns,
                           int32_t a_rows, const void *b, int32_t b_row_stride, int32_t b_column_stride,
                           int32_t b_columns, int32_t b_rows, void *c, int32_t c_row_stride, int32_t c_column_stride);

/**
 * LU factors of an n x n matrix by Doolittle elimination without pivoting.
 *
 * A must be dense (or the transpose of a dense matrix): its n * n floats are copied as one block before they are
 * addressed with the strides. It may be the output itself. A zero pivot is not detected; it spreads infinities or
 * not-a-numbers. Without rows (n not above 0) nothing is written.
 *
 * @param a                 the matrix
 * @param a_row_stride      its strides
 * @param a_column_stride   see above
 * @param index             receives the row order, which is the identity: 0, 1, ..., n - 1
 * @param out               receives U on and above the diagonal and the multipliers of the unit lower factor below it
 * @param out_row_stride    its strides
 * @param out_column_stride see above
 * @param n                 rows and columns
 * @return ISP_SUCCESS; with nothing written, ISP_OUT_OF_MEMORY when the work copy cannot be allocated (its n * n floats
 * must also fit 32 bits) and ISP_INVALID_ARGUMENT when A's strides lead out of it
 */
QZ_ISP_API uint32_t lu_decomposition_m(const void *a, int32_t a_row_stride, int32_t a_column_stride, uint32_t *index,
                                       void *out, int32_t out_row_stride, int32_t out_column_stride, int32_t n);

/**
 * Normal matrix of the least-squares fit of a bivariate polynomial of degree 4 over a width x height grid, factorised.
 *
 * The 15 terms at grid point (x, y), both counted from 1, are 1, x, y, x2, xy, y2, x3, x2y, xy2, y3, x4, x3y, x2y2,
 * xy3, y4. All buffers are the caller's and dense, N being width * height.
 *
 * @param design     receives N rows of 15 terms
 * @param transposed receives its transpose, 15 rows of N
 * @param out        receives the packed LU factors of transposed x design, 15 x 15
 * @param index      receives the 15 row indices 0 to 14
 * @param width      grid columns
 * @param height     grid rows
 * @param term_count must be 15
 * @return ISP_SUCCESS; ISP_OUT_OF_MEMORY when the normal matrix cannot be allocated; ISP_STEP_FAILED when a later step
 * fails or @p term_count is not 15 (then nothing is written)
 */
QZ_ISP_API uint32_t lu_decomposition(float *design, float *transposed, float *out, uint32_t *index, uint16_t width,
                                     uint16_t height, uint16_t term_count);

#endif
