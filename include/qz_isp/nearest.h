/**
 * @file
 * Nearest-neighbour scaling of dense two-dimensional arrays, row after row without padding.
 *
 * Two index rules are in use. The fixed-point rule takes source index (k * (step + 1)) >> 16 for output position k
 * counted from 0, with step = source size * 65536 / output size. The ceiling rule takes ceil(k * ratio) - 1 for output
 * position k counted from 1, with the single-precision ratio source size / output size. Where rounding would give an
 * index past the end, it is the last one.
 */
#ifndef QZ_ISP_NEAREST_H
#define QZ_ISP_NEAREST_H

#include <stdint.h>

#include "qz_isp/export.h"

/**
 * Scales an array of 32-bit elements by the fixed-point rule, up or down.
 *
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when a size is below 1 or an address is null
 */
QZ_ISP_API uint32_t image_nearest_neighbor_scale_uint32(const uint32_t *src, int32_t src_width, int32_t src_height,
                                                        uint32_t *dst, int32_t dst_width, int32_t dst_height);

/**
 * Scales an array of 16-bit elements by the ceiling rule, up or (despite its name) down.
 *
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when a size is below 2
 */
QZ_ISP_API uint32_t image_upscale_nearest_neighbor_uint16(const uint16_t *src, uint16_t *dst, uint16_t src_width,
                                                          uint16_t src_height, uint16_t dst_width, uint16_t dst_height);

/**
 * Scales an array of signed 32-bit elements by the ceiling rule, picking one source element for each output or taking
 * the maximum over the block of source elements that the output covers.
 *
 * With @p use_maximum non-zero, output (r, c) is the largest of 0 and the elements in rows Y[r-1]+1 to Y[r] and columns
 * X[c-1]+1 to X[c], Y and X being the ceiling-rule indices (Y[-1] = X[-1] = -1): the blocks tile the source, and an
 * empty block gives 0.
 *
 * @return ISP_SUCCESS, or ISP_INVALID_ARGUMENT with nothing written when a size is below 2
 */
QZ_ISP_API uint32_t image_downscale_nearest_neighbor_int32(const int32_t *src, int32_t *dst, uint16_t src_width,
                                                           uint16_t src_height, uint16_t dst_width, uint16_t dst_height,
                                                           uint8_t use_maximum);

#endif
