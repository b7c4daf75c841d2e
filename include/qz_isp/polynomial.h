/**
 * @file
 * Resampling of lens-shading grids through a bivariate polynomial of degree 4.
 *
 * The 15 terms are those of lu_decomposition(), in the same order, in 1-based grid coordinates.
 */
#ifndef QZ_ISP_POLYNOMIAL_H
#define QZ_ISP_POLYNOMIAL_H

#include <stdint.h>

#include "qz_isp/export.h"

/**
 * Evaluates a polynomial on an output grid that spans (1, 1) to (in_w, in_h). An axis with one output sample is
 * evaluated at coordinate 1. All in single precision: a term is its coefficient times its monomial, the monomial a
 * power of x times a power of y, and the terms are added in their order.
 *
 * @param out    receives out_w * out_h floats, row after row
 * @param coeffs 15 coefficients, not read when there is no output sample
 * @param in_w   columns of the grid that the coefficients were fitted to
 * @param in_h   its rows
 * @param out_w  output columns, its low 16 bits are used
 * @param out_h  output rows
 */
QZ_ISP_API void do_polynomial_upscale(float *out, const float *coeffs, uint16_t in_w, uint16_t in_h, uint32_t out_w,
                                      uint16_t out_h);

/**
 * Fits a polynomial to each of four grids by least squares and evaluates it on a finer grid.
 *
 * @param basis_t n rows of in_w * in_h floats: every term at every grid sample (lu_decomposition()'s transposed matrix)
 * @param lu      n x n packed LU factors of the normal matrix, without pivoting (lu_decomposition()'s output)
 * @param perm    row permutation that belongs to the factors; not read
 * @param in      four grids of in_w * in_h floats
 * @param out     four grids of out_w * out_h floats, owned by the caller
 * @param in_w    columns of an input grid
 * @param in_h    its rows
 * @param out_w   columns of an output grid
 * @param out_h   its rows
 * @param n       number of terms, 15
 * @return ISP_SUCCESS; ISP_STEP_FAILED when memory cannot be had (the grids of earlier channels stay written) or @p n
 * is not 15 (nothing is written)
 */
QZ_ISP_API uint32_t lsc_polynomial_upscale_float(const float *basis_t, const float *lu, const uint32_t *perm,
                                                 const float *const *in, float *const *out, uint16_t in_w,
                                                 uint16_t in_h, uint16_t out_w, uint16_t out_h, uint16_t n);

#endif
