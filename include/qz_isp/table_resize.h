/**
 * @file
 * Linear resampling of one-dimensional tables and bilinear resampling of two-dimensional tables to a new number of
 * points. Tables are dense. The first output point lands on the first input point.
 *
 * The integer members work in fixed point: output point i lies at position i * step, where step is the source count
 * less 1, shifted left by the fraction bits, divided by the destination count less 1 (truncated).
 */
#ifndef QZ_ISP_TABLE_RESIZE_H
#define QZ_ISP_TABLE_RESIZE_H

#include <stdint.h>

#include "qz_isp/export.h"

/**
 * Resamples a curve of floats to a table of 16-bit integers.
 *
 * Each source value counts as value * 256, truncated, its low 16 bits; each output is multiplied by @p scale (1024 =
 * 1.0, 0 = not multiplied) with rounding. Positions have 10 fraction bits.
 *
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when a count is below 2, @p src_count is above
 * 2^21, or an address is null
 */
QZ_ISP_API uint32_t isp_resize_1d_array_uint16(const float *src, int32_t src_count, uint32_t scale, uint16_t *dst,
                                               int32_t dst_count);

/**
 * Resamples one table of 16-bit integers, or the mix of two, to a table of floats in units of 1/256.
 *
 * @param src_a     first table
 * @param src_count elements in each source table
 * @param src_b     second table, or null for the first alone
 * @param mix       share of @p src_b: 1024 and above = all of it, 0 and below = none
 * @param gain      factor on the result, 1024 = 1.0; 0 = 1.0
 * @param dst       receives @p dst_count floats
 * @param dst_count elements of the destination
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when a count is below 2, @p src_count is above
 * 2^21, or @p src_a or @p dst is null
 */
QZ_ISP_API uint32_t resize_and_mix_1d_array_uint16(const uint16_t *src_a, int32_t src_count, const uint16_t *src_b,
                                                   int32_t mix, uint32_t gain, float *dst, int32_t dst_count);

/**
 * Bilinear resize of 8-bit elements; positions have 8 fraction bits.
 *
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when a dimension is below 2 or a source dimension
 * is above 2^23
 */
QZ_ISP_API uint32_t resize_2d_array_uint8(const uint8_t *src, int32_t src_width, int32_t src_height, uint8_t *dst,
                                          int32_t dst_width, int32_t dst_height);

/** As resize_2d_array_uint8(), for 16-bit elements. */
QZ_ISP_API uint32_t resize_2d_array_uint16(const uint16_t *src, int32_t src_width, int32_t src_height, uint16_t *dst,
                                           int32_t dst_width, int32_t dst_height);

/**
 * As resize_2d_array_uint8(), for 32-bit elements; positions have 12 fraction bits and source dimensions reach 2^19.
 * The products wrap modulo 2^32, so that results are exact only for source values below 256.
 */
QZ_ISP_API uint32_t resize_2d_array_uint32(const uint32_t *src, int32_t src_width, int32_t src_height, uint32_t *dst,
                                           int32_t dst_width, int32_t dst_height);

/**
 * Bilinear resize of floats, in single precision.
 *
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when a dimension is below 2
 */
QZ_ISP_API uint32_t resize_2d_array_float(const float *src, uint16_t src_width, int32_t src_height, float *dst,
                                          uint16_t dst_width, int32_t dst_height);

#endif
