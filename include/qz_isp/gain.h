/**
 * @file
 * Gain-indexed tables: interpolation between the two rows that bracket the current gain.
 *
 * The current gain is the frame's total gain x 256 (256 = unity), an unsigned 16-bit value.
 */
#ifndef QZ_ISP_GAIN_H
#define QZ_ISP_GAIN_H

#include <stdint.h>

#include "qz_isp/export.h"

/**
 * Interpolates every value of a gain-indexed table of 32-bit rows at the current gain.
 *
 * The lower row is the one with the largest key not above the gain, the upper row the one with the smallest key not
 * below it; the first in table order wins among equal keys, and each stands in for the other outside the table, so
 * that nothing is extrapolated. Rows need not be sorted. Each value is interpolate_linear() between the two rows.
 *
 * @param gain           current gain, compared with the keys as a signed 32-bit number
 * @param table          row_count rows of 1 + values_per_row words: the gain key, then the values
 * @param values_per_row values in a row, the key not counted; nothing is written when it is 0 or less
 * @param row_count      rows in the table; nothing is written when it is 0 or less
 * @param out            receives values_per_row values (two's complement where they are negative)
 */
QZ_ISP_API void compute_generic_params(uint16_t gain, const int32_t *table, int32_t values_per_row, int32_t row_count,
                                       uint32_t *out);

/**
 * Linear interpolation between (x0, y0) and (x1, y1) at x, rounded half away from zero.
 *
 * The product (y1 - y0) * (x - x0) is formed in wrapping 32-bit arithmetic; the quotient, the sum and the rounding in
 * single precision.
 *
 * @return the interpolated value; y0 when x0 equals x1, whatever x is
 */
QZ_ISP_API int32_t interpolate_linear(int32_t x0, int32_t x1, int32_t y0, int32_t y1, int32_t x);

/** Number of significant bits of @p v: 0 for 0, otherwise the position of the highest set bit plus 1. */
QZ_ISP_API uint32_t calc_shifter(uint32_t v);

#endif
