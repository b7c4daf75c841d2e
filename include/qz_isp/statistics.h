/**
 * @file
 * Statistics: the ISP's raw 3A statistics and the generic grids that the 3A algorithms read.
 */
#ifndef QZ_ISP_STATISTICS_H
#define QZ_ISP_STATISTICS_H

#include <stdint.h>

#include "qz_isp/export.h"

struct isp_context;

/** One cell of the ISP's statistics. */
typedef struct isp_stats_cell {
    uint32_t unused;            /**< Not read. */
    int32_t count;              /**< Saturated samples, 0 to 2^(2e). */
    int32_t channel_sum[4];     /**< Sum of the cell's samples, one per channel. */
    uint32_t filter_1_response; /**< AF filter 1. */
    uint32_t filter_2_response; /**< AF filter 2. */
} isp_stats_cell;

/** The ISP's statistics of one frame. */
typedef struct isp_stats {
    uint32_t unused_0[3];        /**< Words 0 to 2: not read. */
    uint32_t width;              /**< Grid width in cells. */
    uint32_t height;             /**< Grid height in cells. */
    uint32_t unused_5[2];        /**< Words 5 and 6: not read. */
    uint32_t af_block_size;      /**< Written to both block sizes of the AF descriptor. */
    uint32_t cell_size_exponent; /**< e: a cell accumulates 2^(2e) samples per channel. */
    uint32_t bit_depth;          /**< b: bits per sample. */
    const isp_stats_cell *cells; /**< width * height cells, row by row. */
} isp_stats;

/** One cell of the RGBS grid: 5 bytes. */
typedef struct isp_rgbs_cell {
    uint8_t average[4]; /**< Rounded channel averages scaled to 8 bits, in the order of the channel sums. */
    uint8_t saturation; /**< 255 * (2^(2e) - count) / 2^(2e), truncated. */
} isp_rgbs_cell;

/** Descriptor of the RGBS grid. */
typedef struct rgbs_grid_desc {
    isp_rgbs_cell *cells; /**< width * height cells, row by row. */
    uint16_t width;       /**< Cells in a row. */
    uint16_t height;      /**< Rows. */
} rgbs_grid_desc;

/** Descriptor of the AF filter responses. */
typedef struct af_grid_desc {
    uint16_t width;        /**< Cells in a row. */
    uint16_t height;       /**< Rows. */
    uint16_t block_width;  /**< isp_stats::af_block_size. */
    uint16_t block_height; /**< isp_stats::af_block_size. */
    uint32_t *filter_1;    /**< width * height responses, row by row. */
    uint32_t *filter_2;    /**< width * height responses, row by row. */
} af_grid_desc;

/**
 * Converts raw statistics to the context's RGBS and AF grids.
 *
 * The descriptors belong to the context: they stay valid until it is destroyed, and the next call overwrites what they
 * address. Width, height and block size are taken as their low 16 bits.
 *
 * @param context context whose grids are written
 * @param stats   the frame's statistics, read during the call
 * @param rgbs    receives the address of the RGBS descriptor
 * @param af      receives the address of the AF descriptor
 * @return ISP_SUCCESS; ISP_INVALID_DATA with nothing written when an argument, a descriptor or the cell array is null,
 * the grid has more cells than the context was made for, or bit_depth + 2e - 8 lies outside 1 to 31; a grid without
 * cells needs neither array nor bits
 */
QZ_ISP_API uint32_t qz_isp_2_7_statistics_convert(struct isp_context *context, const isp_stats *stats,
                                                  const rgbs_grid_desc **rgbs, const af_grid_desc **af);

#endif
