/**
 * @file
 * Bicubic and area-averaging resampling of small images and grids of gains.
 *
 * Planes are row-major without padding. The bicubic members copy the source into an extended buffer of (width + 3) x
 * (height + 3) floats, whose row 0 and column 0 lie before the source and whose last two rows and columns lie after it,
 * fill the border by linear extrapolation and evaluate the Keys kernel with a = -0.5 (Catmull-Rom) without edge tests.
 *
 * p10 is unsigned 16-bit fixed point with 10 fractional bits: 1024 = 1.0.
 */
#ifndef QZ_ISP_BICUBIC_H
#define QZ_ISP_BICUBIC_H

#include <stdint.h>

#include "qz_isp/export.h"

/**
 * Extrapolates one border sample of an extended buffer from samples inside it.
 *
 * @param sample the sample to write
 * @param stride row stride of the buffer in floats; its low 16 bits are used
 * @param mode   0 top, 1 bottom, 2 left, 3 right, 4 top-left, 5 top-right, 6 bottom-left, 7 bottom-right; above 7 the
 *               sample becomes 0
 */
QZ_ISP_API void interpolate_gain_value(float *sample, uint32_t stride, uint32_t mode);

/**
 * Fills an extended buffer from one plane of 16-bit samples. A plane one sample wide or high is extrapolated from
 * border samples that are not yet there: they count as 0. A plane without samples gives zeros.
 *
 * @param src    height rows of width samples
 * @param buffer (width + 3) * (height + 3) floats, owned by the caller; all of them are written
 * @param width  samples in a row
 * @param height rows
 */
QZ_ISP_API void create_extrapolated_buffer_for_bicubic_u16(const uint16_t *src, float *buffer, uint16_t width,
                                                           uint16_t height);

/**
 * Bicubic upscaling of planes of 8-bit samples to planes of floats, clamped to -255 to 65535.
 *
 * @param src_planes  plane_count planes of src_width * src_height samples
 * @param dst_planes  plane_count planes of dst_width * dst_height floats, owned by the caller
 * @param src_width   samples in a source row
 * @param src_height  source rows
 * @param dst_width   floats in a destination row
 * @param dst_height  destination rows
 * @param plane_count planes, all of the same size
 * @return ISP_SUCCESS; ISP_INVALID_ARGUMENT with nothing written when a destination dimension is below the source's
 * ("Not upscaling" is logged) or is 1, or a source dimension is 0; ISP_OUT_OF_MEMORY with nothing written when memory
 * runs out ("QZ_ALLOC failed" is logged)
 */
QZ_ISP_API uint32_t image_bicubic_upscale_uint8_to_float(const uint8_t *const *src_planes, float *const *dst_planes,
                                                         uint16_t src_width, uint16_t src_height, uint16_t dst_width,
                                                         uint16_t dst_height, uint16_t plane_count);

/** As image_bicubic_upscale_uint8_to_float(), for planes of 16-bit samples. */
QZ_ISP_API uint32_t image_bicubic_upscale_uint16_to_float(const uint16_t *const *src_planes, float *const *dst_planes,
                                                          uint16_t src_width, uint16_t src_height, uint16_t dst_width,
                                                          uint16_t dst_height, uint16_t plane_count);

/**
 * Bicubic resize, up or down, of one plane of floats to one plane in p10. Corners fall exactly on corners; results are
 * truncated and not clamped, so values are expected to lie in 0 to 64. Sizes are taken rows before columns.
 *
 * @return ISP_SUCCESS; ISP_INVALID_ARGUMENT with nothing written when a destination dimension is 1 or a source
 * dimension is 0; ISP_OUT_OF_MEMORY with nothing written when memory runs out
 */
QZ_ISP_API uint32_t bicubic_resize_32f_to_u16p10(const float *src, uint16_t src_rows, uint16_t src_cols, uint16_t *dst,
                                                 uint16_t dst_rows, uint16_t dst_cols);

/** A rectangle of the source, in samples. */
typedef struct isp_roi {
    uint16_t x;      /**< Column of its left edge. */
    uint16_t y;      /**< Row of its upper edge. */
    uint16_t width;  /**< Columns. */
    uint16_t height; /**< Rows. */
} isp_roi;

/**
 * Area-weighted average of planes of floats, reduced to planes in p10 and rounded half up.
 *
 * @param src_planes  plane_count planes of src_width * src_height floats
 * @param dst_planes  plane_count planes of dst_width * dst_height entries, owned by the caller
 * @param src_width   floats in a source row
 * @param src_height  source rows
 * @param dst_width   entries in a destination row
 * @param dst_height  destination rows
 * @param plane_count planes, all of the same size
 * @param roi         part of every source plane to reduce, or null for the whole plane
 * @return ISP_SUCCESS; ISP_INVALID_ARGUMENT with nothing written when the destination is not smaller in both
 * dimensions, is below 3 in one, or @p roi reaches outside the source
 */
QZ_ISP_API uint32_t image_downscale_32f_to_u16p10(const float *const *src_planes, uint16_t *const *dst_planes,
                                                  uint16_t src_width, uint16_t src_height, uint16_t dst_width,
                                                  uint16_t dst_height, uint16_t plane_count, const isp_roi *roi);

#endif
