/**
 * @file
 * Noise, detail and lens shading blocks.
 *
 * The gain-indexed functions take the current gain (total gain x 256), the address of their slot group in the selected
 * tuning set, a strength where they have one (signed 8 bits, 0 = the tuned values unchanged) and the fields to write.
 * Keys and gain are compared as unsigned 16-bit values. A record without rows leaves the fields as they are.
 */
#ifndef QZ_ISP_NOISE_DETAIL_H
#define QZ_ISP_NOISE_DETAIL_H

#include <stdint.h>

#include "qz_isp/aic_record.h"
#include "qz_isp/export.h"
#include "qz_isp/frame.h"
#include "qz_isp/tuning.h"

/**
 * How far the strengths go: X(name, at 127, at -128, limit). A strength multiplies a value by 1.0 and a part of what
 * stands here for the end of its range, linearly on either side of 0; what it gives is limited, unless by 0.
 */
#define ISP_STRENGTHS(X)                                                                                               \
    X(temporal_noise_reduction, 4.0, -0.8, 0)                                                                          \
    X(noise_reduction, 4.0, -0.8, 65535)                                                                               \
    X(y_edge_enhancement, 4.0, -0.8, 8191)                                                                             \
    X(chroma_nr, -0.8, 4.0, 8191)                                                                                      \
    X(edge_enhancement_0, 2.0, -0.667, 0)                                                                              \
    X(edge_enhancement_2, 1.0, -0.5, 0)

/** Defect pixel correction: rows of a key and two values. */
QZ_ISP_API void compute_defect_pixel_correction(uint16_t gain, const isp_table_slot *slot, uint32_t *param0,
                                                uint32_t *param1);

/**
 * Bayer noise reduction: rows of a key and five values. The strength scales parameters 0 and 1, as ISP_STRENGTHS tells
 * of noise_reduction.
 */
QZ_ISP_API void compute_noise_reduction(uint16_t gain, const isp_table_slot *slot, int8_t strength, uint32_t *param0,
                                        uint32_t *param1, uint32_t *param2, uint32_t *param3, uint32_t *param4);

/**
 * Temporal noise reduction: rows of a key and three values. The strength scales parameter 0, as ISP_STRENGTHS tells of
 * temporal_noise_reduction.
 */
QZ_ISP_API void compute_temporal_noise_reduction(uint16_t gain, const isp_table_slot *slot, int8_t strength,
                                                 uint32_t *param0, uint32_t *param1, uint32_t *param2);

/** XNR: rows of a key and one value. @p param receives 32 bits, of which values between the tuned ones use 16. */
QZ_ISP_API void compute_xnr(uint16_t gain, const isp_table_slot *slot, uint32_t *param);

/**
 * Edge enhancement: rows of a key and three values. The sharpness scales parameters 0 and 2, as ISP_STRENGTHS tells of
 * edge_enhancement_0 and edge_enhancement_2. It stands before the slot, which is meant.
 */
QZ_ISP_API void compute_edge_enhancement(uint16_t gain, int8_t sharpness, const isp_table_slot *slot, uint32_t *param0,
                                         uint32_t *param1, uint32_t *param2);

/**
 * Y edge enhancement: rows of a key and four values. The sharpness scales all of them, as ISP_STRENGTHS tells of
 * y_edge_enhancement.
 */
QZ_ISP_API void compute_y_edge_enhancement(uint16_t gain, const isp_table_slot *slot, int8_t sharpness,
                                           uint16_t *param0, uint16_t *param1, uint16_t *param2, uint16_t *param3);

/**
 * Chroma noise reduction: rows of a key and eight values, 8-bit ones (the first two count 32-fold) or 16-bit ones. The
 * strength scales fields 2 to 7, as ISP_STRENGTHS tells of chroma_nr: the other way.
 * @p fields receives eight fields.
 */
QZ_ISP_API void compute_chroma_nr(uint16_t gain, const isp_chroma_nr_slot *slot, int8_t strength, uint16_t *fields);

/**
 * Fringe control: twelve values brought to 13-bit magnitudes by one shift, which is added to the tuned exponent. The
 * sharpness moves fields 4 to 7 towards 0 (-128) or 65535 (127).
 * @p block receives the block's payload; its unused byte, and fields 0 to 3 without a second table, are not written.
 */
QZ_ISP_API void compute_fringe_control(uint16_t gain, const isp_fringe_control_slot *slot, int8_t sharpness,
                                       aic_fringe_control *block);

/**
 * Lens shading: resamples four grids of gains to the hardware grid of the sensor mode, as fixed-point tables.
 *
 * The grid covers half the frame's width and height with square cells of 64 (sensors of 4 million pixels and more), 32
 * (1 million and more) or 16 plane pixels. Grids larger than the hardware grid in both directions are averaged
 * (image_downscale_32f_to_u16p10()), others resized (bicubic_resize_32f_to_u16p10()). A table whose routine refuses the
 * sizes, as an average of fewer than 3 columns or rows, or runs out of memory, keeps its contents as they are;
 * addresses, status and enable flag do not tell.
 *
 * @param sensor            sensor description, or null for 3264 x 2448 pixels
 * @param shading_input     grids of gains, or null: fails
 * @param frame             frame geometry, or null: fails
 * @param enable_flag       set to 0 on failure, else left as it is
 * @param out_scaled_width  receives frame width * numerator / denominator, low 16 bits
 * @param out_scaled_height as @p out_scaled_width, for the height
 * @param out_columns       receives the table's columns
 * @param out_rows          receives the table's rows
 * @param format            fractional bits of the entries: 8 or 10; other values leave 10 and apply no factor
 * @param table_addresses   receive where the four tables are: on 32-bit targets their addresses, else their offsets in
 *                          an AIC output record whose tables start at @p next_free
 * @param next_free         address where table storage begins; left past the fourth table
 * @param channel_factors   four factors, or null for 1.0
 * @param out_cell_size     receives 16, 32 or 64
 * @return ISP_SUCCESS; ISP_INVALID_ARGUMENT with only the enable flag written when an input or a grid is missing, a
 * dimension, denominator or scaled size is 0, or a table would have more than 65535 entries
 */
QZ_ISP_API uint32_t compute_lsc(const isp_sensor_description *sensor, const isp_lsc_params *shading_input,
                                const isp_frame_desc *frame, uint8_t *enable_flag, uint32_t *out_scaled_width,
                                uint32_t *out_scaled_height, uint32_t *out_columns, uint32_t *out_rows,
                                const uint32_t *format, uint32_t *table_addresses, uintptr_t *next_free,
                                const float *channel_factors, float *out_cell_size);

#endif
