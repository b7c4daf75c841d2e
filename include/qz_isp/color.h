/**
 * @file
 * Colour processing: colour matrices, colour effects, multi-axis colour correction, gamma tables, white balance, black
 * level and chroma tone control.
 *
 * Matrices are row-major. Manual controls are signed 8-bit values, -128 to 127, 0 meaning no change.
 */
#ifndef QZ_ISP_COLOR_H
#define QZ_ISP_COLOR_H

#include <stdint.h>

#include "qz_isp/export.h"
#include "qz_isp/frame.h"
#include "qz_isp/tuning.h"

struct qz_mkn;

/** Bits of the effect flag word. */
enum isp_effect {
    ISP_EFFECT_MACC_1 = 0x1,         /**< Fixed multi-axis table 1. */
    ISP_EFFECT_MACC_2 = 0x2,         /**< Fixed multi-axis table 2. */
    ISP_EFFECT_MACC_3 = 0x4,         /**< Fixed multi-axis table 3. */
    ISP_EFFECT_MACC_4 = 0x8,         /**< Fixed multi-axis table 4. */
    ISP_EFFECT_MACC_5 = 0x10,        /**< Fixed multi-axis table 5. */
    ISP_EFFECT_WARM_GREY = 0x20,     /**< Colour matrix of a warm-tinted grey image. */
    ISP_EFFECT_TWO_LEVEL = 0x40,     /**< Grey colour matrix and gamma tables of two levels. */
    ISP_EFFECT_NEGATIVE = 0x80,      /**< Mirrored gamma tables. */
    ISP_EFFECT_VIVID = 0x100,        /**< Saturation factor times 1.5. */
    ISP_EFFECT_NEGATIVE_ALT = 0x200, /**< As ISP_EFFECT_NEGATIVE. */
    ISP_EFFECT_GREY = 0x400,         /**< Grey colour matrix. */
    ISP_EFFECT_COOL_GREY = 0x800     /**< Colour matrix of a cool-tinted image made from channel 0. */
};

/** Matrix product out = a x b of 3x3 matrices; each element is (a0 b0 + a1 b1) + a2 b2. @p out must not overlap. */
QZ_ISP_API void MulMtx3x3(float *out, const float *a, const float *b);

/** A colour correction matrix in fixed point. */
typedef struct cc_fixed_matrix {
    uint16_t shift;          /**< Integer bits, 0 to 6. */
    int16_t coefficients[9]; /**< c stands for c / (32768 >> shift); -32768 stands for 0. */
} cc_fixed_matrix;

/**
 * Folds a colour correction matrix with the RGB-to-YCbCr conversion (BT.601 full range) and the basis matrix.
 *
 * @param cc        nothing is written when its shift is above 6
 * @param frac_bits receives 8
 * @param out       nine coefficients with 8 fractional bits, truncated
 */
QZ_ISP_API void set_cc_reg(const cc_fixed_matrix *cc, uint32_t *frac_bits, int32_t *out);

/**
 * Brings a colour matrix, folded with the basis matrix, into the hardware's form: as many fractional bits as keep every
 * coefficient within 14 signed bits. Nothing is written when a pointer is null.
 *
 * @param matrix    3x3
 * @param coeffs    nine coefficients, truncated
 * @param frac_bits 0 to 13; 0 also for matrices that do not fit
 */
QZ_ISP_API void set_yuv_to_rgb(const float *matrix, int32_t *coeffs, uint32_t *frac_bits);

/** Scales a saturation factor in place: by 0 at -128, 1 at 0 (unchanged), 5 at 127. */
QZ_ISP_API void compute_saturation_factor(int8_t saturation, float *factor);

/** Rotation matrix (cos, -sin / sin, cos) of a hue; -128 and 127 are half a turn. */
QZ_ISP_API void create_hue_matrix(int8_t hue, float *out);

/** Rotates sixteen 2x2 matrices in place by a hue and clamps every element to +-3.999. */
QZ_ISP_API void compute_hue(float *sectors, int8_t hue);

/**
 * Replaces colour correction matrices by the matrix of a colour effect: bits 0x440 before 0x20 before 0x800.
 *
 * @param ccms    count entries, 36 floats (144 bytes) apart, each beginning with a 3x3 matrix
 * @param count   entries
 * @param effects effect flag word
 */
QZ_ISP_API void apply_color_effects_to_ccms(float *ccms, uint32_t count, uint32_t effects);

/**
 * Applies a manual saturation to colour correction matrices in place; rows that are boosted sum to 1 afterwards.
 *
 * @param ccms       count 3x3 matrices, one after another
 * @param count      matrices
 * @param disabled   when not 0, nothing is done
 * @param saturation its low byte is used, signed
 * @param factor     multiplies the saturation's own factor
 */
QZ_ISP_API void apply_manual_saturation_to_ccms(float *ccms, uint32_t count, uint32_t disabled, int32_t saturation,
                                                float factor);

/** Applies a manual hue to count 3x3 matrices, one after another, in place; does nothing when disabled is not 0. */
QZ_ISP_API void apply_manual_hue_to_ccms(float *ccms, uint32_t count, uint32_t disabled, int8_t hue);

/**
 * The sixteen sector matrices of multi-axis colour correction: a base set from tuning, the tables of the effects that
 * are switched on, the manual hue.
 *
 * @param macc    the `macc` slot of the selected tuning set; an empty one has no entries
 * @param mode    1 takes the base set whose key is nearest to @p target, any other value the first with key 0
 * @param target  value that keys are compared with
 * @param effects effect flag word, bits 0x1 to 0x10
 * @param hue     manual hue
 * @param coeffs  64 coefficients; k stands for k * 2^shift / 8192
 * @param shift   receives the shift, or null for a shift of 0
 */
QZ_ISP_API void compute_macc(const isp_table_slot *macc, uint32_t mode, uint32_t target, uint32_t effects, int8_t hue,
                             int16_t *coeffs, uint8_t *shift);

/**
 * One channel's gamma table from its curve, with the negative and two-level effects.
 *
 * @param gamma     gamma record, or null: the table is left as it is
 * @param curve     the channel's curve, gamma->point_count points, or null for the line from 0 to 1
 * @param effects   effect flag word, bits 0x40, 0x80 and 0x200
 * @param table     receives @p len entries; 4095 stands for the curve's last point. Left as it is when the curve has
 *                  fewer than two points; a table of one entry is not resampled, the effects alone act on it
 * @param len       entries; its low 16 bits are used
 * @param threshold position of the two-level effect's step as a fraction of the table
 * @param mkn       makernote that gets record 540 (one byte: 2, or 0 without a gamma record), or null
 */
QZ_ISP_API void compute_gamma(const isp_gamma_params *gamma, const float *curve, uint32_t effects, uint16_t *table,
                              uint32_t len, float threshold, struct qz_mkn *mkn);

/** Replaces every entry x by last - x, modulo 2^16. */
QZ_ISP_API void invert_gamma(uint16_t *table, uint16_t len);

/** Replaces every entry x by last - x. */
QZ_ISP_API void invert_gamma_f(float *table, uint16_t len);

/**
 * Applies brightness (a power curve) and contrast (two power curves that meet at half the largest entry) to a table.
 *
 * @param brightness exponent 5 (-128) to 0.25 (127)
 * @param contrast   exponent 0.2 (-128) to 5 (127)
 * @param in         n entries
 * @param out        receives n entries; may be @p in
 * @param n          entries; nothing is written when it is below 1
 */
QZ_ISP_API void compute_brightness_contrast(int8_t brightness, int8_t contrast, const uint16_t *in, uint16_t *out,
                                            int32_t n);

/**
 * As compute_brightness_contrast(), on a table of floats in place, without rounding. Does nothing for null, when both
 * controls are 0, and to a table without an entry above 0.
 */
QZ_ISP_API void compute_brightness_contrast_f(int8_t brightness, int8_t contrast, float *table, int32_t n);

/**
 * White-balance gains as mantissas with one shared shift: gain = coefficient * 2^shift / 65536. The outputs stand in
 * the order 1, 0, 3, 2, which is meant; each receives the channel that it names.
 *
 * @param gains four gains, each in [0, 65536)
 * @param shift receives the shift, 0 to 16
 * @param gain1 receives the coefficient of gain 1
 * @param gain0 receives the coefficient of gain 0
 * @param gain3 receives the coefficient of gain 3
 * @param gain2 receives the coefficient of gain 2
 */
QZ_ISP_API void compute_white_balance(const float *gains, uint32_t *shift, uint32_t *gain1, uint32_t *gain0,
                                      uint32_t *gain3, uint32_t *gain2);

/**
 * Chroma tone control: six tuned values times a factor as 13-bit mantissas with one shared shift, then the shift and
 * four tuned values as they are.
 *
 * @param record the `ctc_config` record
 * @param factor saturation factor, 1.0 = as tuned
 * @param block  eleven words
 */
QZ_ISP_API void compute_ctc_config(const isp_record *record, float factor, uint16_t *block);

/**
 * Gains that bring a signal that lost a black level back to full scale: full / (full - offset).
 *
 * @param offsets four black levels in raw code values
 * @param bits    sensor bit depth, 1 to 31; others count modulo 32
 * @param gains   four gains; at an offset of full scale infinite
 */
QZ_ISP_API void compute_isp_lsc_saturation_compensation(const float *offsets, uint16_t bits, float *gains);

/**
 * Black levels as fractions of full scale, 65536 = full scale, truncated; negative levels give 0. The outputs stand in
 * the order 1, 0, 3, 2, which is meant; each receives the channel that it names.
 *
 * @param levels    four black levels in raw code values
 * @param bit_depth sensor bit depth, 1 to 31; others count modulo 32
 * @param out_ch1   receives the level of channel 1
 * @param out_ch0   receives the level of channel 0
 * @param out_ch3   receives the level of channel 3
 * @param out_ch2   receives the level of channel 2
 * @return ISP_SUCCESS
 */
QZ_ISP_API uint32_t compute_isp_black_level_compensation(const float *levels, uint16_t bit_depth, uint32_t *out_ch1,
                                                         uint32_t *out_ch0, uint32_t *out_ch3, uint32_t *out_ch2);

#endif
