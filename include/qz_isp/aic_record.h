/**
 * @file
 * AIC output record: the hardware parameters of one frame, AIC_RECORD_SIZE bytes, little-endian.
 *
 * The record is a chain of blocks in a fixed order. Each starts on an 8-byte boundary with its id and its size in bytes
 * (the 8-byte header included); padding up to the next block stays zero. Blocks whose purpose the hardware does not
 * name carry the name of the tuning record that fills them, or their id.
 *
 * docs/record.md describes every field with its unit and range.
 */
#ifndef QZ_ISP_AIC_RECORD_H
#define QZ_ISP_AIC_RECORD_H

#include <stddef.h>
#include <stdint.h>

/** Bytes of the record. */
#define AIC_RECORD_SIZE 35288u
/** Bytes in use without lens shading: where the lens shading block starts. */
#define AIC_FIXED_SIZE 4928u
/** Entries that each of the four lens shading tables has room for. */
#define AIC_LENS_SHADING_MAX_ENTRIES 3789u
/** Bytes from the start of the lens shading block to its first table. */
#define AIC_LENS_SHADING_TABLES_OFFSET 48u
/** Entries that a gamma table has room for. */
#define AIC_GAMMA_MAX_ENTRIES 257u

/**
 * The blocks in record order: X(name, id, size, offset, payload, padding, family). The payload is the type of what
 * follows the header, the padding the bytes from its end to the next multiple of 8; the size does not count it. The
 * size of the lens shading block is that of an empty one. The family tells what fills the block: colour, noise_detail,
 * long_table (a row of a long tuning record), copied (or fixed) or lens_shading.
 */
#define AIC_BLOCKS(X)                                                                                                  \
    X(white_balance, 1, 28, 0, aic_white_balance, 4, colour)                                                           \
    X(defect_pixel, 2, 32, 32, aic_defect_pixel, 0, noise_detail)                                                      \
    X(long_3, 3, 36, 64, aic_long_3, 4, long_table)                                                                    \
    X(yuv_to_rgb, 4, 48, 104, aic_colour_matrix, 0, colour)                                                            \
    X(temporal_noise_reduction, 5, 20, 152, aic_params_3, 4, noise_detail)                                             \
    X(rec_3, 6, 14, 176, aic_rec_3, 2, copied)                                                                         \
    X(y_edge_enhancement, 8, 16, 192, aic_y_edge_enhancement, 0, noise_detail)                                         \
    X(fringe_control, 7, 34, 208, aic_fringe_control, 6, noise_detail)                                                 \
    X(block_9, 9, 12, 248, aic_word, 4, copied)                                                                        \
    X(chroma_nr, 10, 24, 264, aic_chroma_nr, 0, noise_detail)                                                          \
    X(ctc, 37, 30, 288, aic_ctc, 2, colour)                                                                            \
    X(rec_13_a, 11, 10, 320, aic_half_word, 6, copied)                                                                 \
    X(rec_13_b, 12, 10, 336, aic_half_word, 6, copied)                                                                 \
    X(edge_enhancement, 13, 20, 352, aic_params_3, 4, noise_detail)                                                    \
    X(macc, 14, 136, 376, aic_macc, 0, colour)                                                                         \
    X(macc_shift, 15, 9, 512, aic_byte, 7, colour)                                                                     \
    X(noise_reduction, 16, 28, 528, aic_noise_reduction, 4, noise_detail)                                              \
    X(black_level, 17, 24, 560, aic_black_level, 0, noise_detail)                                                      \
    X(xnr, 18, 10, 584, aic_xnr, 4, noise_detail)                                                                      \
    X(rgb_to_yuv, 19, 48, 600, aic_colour_matrix, 0, copied)                                                           \
    X(rec_16, 20, 88, 648, aic_rec_16, 0, copied)                                                                      \
    X(block_21, 21, 12, 736, aic_half_words_2, 4, copied)                                                              \
    X(block_22, 22, 10, 752, aic_bytes_2, 6, copied)                                                                   \
    X(block_23, 23, 20, 768, aic_params_3, 4, copied)                                                                  \
    X(long_5, 29, 588, 792, aic_long_5, 4, long_table)                                                                 \
    X(long_6, 31, 1188, 1384, aic_long_6, 4, long_table)                                                               \
    X(long_7, 32, 256, 2576, aic_long_7, 0, long_table)                                                                \
    X(long_13, 33, 32, 2832, aic_long_13, 0, long_table)                                                               \
    X(long_11, 35, 64, 2864, aic_long_11, 0, long_table)                                                               \
    X(long_12, 34, 396, 2928, aic_long_12, 4, long_table)                                                              \
    X(frame_counter, 24, 12, 3328, aic_word, 4, copied)                                                                \
    X(gamma_0, 25, 528, 3344, aic_gamma, 0, colour)                                                                    \
    X(gamma_1, 26, 528, 3872, aic_gamma, 0, colour)                                                                    \
    X(gamma_2, 27, 528, 4400, aic_gamma, 0, colour)                                                                    \
    X(lens_shading, 28, 48, 4928, aic_lens_shading, 0, lens_shading)

/** White-balance gains: gain = coefficient * 2^shift / 65536. */
typedef struct aic_white_balance {
    uint32_t shift;   /**< Bit length of the largest gain's integer part. */
    uint32_t gain[4]; /**< Coefficients with 16 - shift fractional bits, below 65536. */
} aic_white_balance;

/** Defect pixel correction. */
typedef struct aic_defect_pixel {
    uint32_t param[2]; /**< Tuned. */
    uint32_t gain[4];  /**< Copies of the white-balance coefficients. */
} aic_defect_pixel;

/** Tuned values and the white-balance gains in a fixed format. */
typedef struct aic_long_3 {
    uint32_t param[3]; /**< Tuned, two's complement. */
    uint32_t gain[4];  /**< White-balance gains with 9 fractional bits (512 = unity). */
} aic_long_3;

/** A 3x3 colour matrix: coefficient k stands for k / 2^frac_bits. */
typedef struct aic_colour_matrix {
    uint32_t frac_bits; /**< 0 to 13. */
    int32_t coeff[9];   /**< Row by row, within 14 signed bits. */
} aic_colour_matrix;

/** Three parameters (temporal noise reduction, edge enhancement, block 23). */
typedef struct aic_params_3 {
    uint32_t param[3]; /**< Tuned; which of them a strength scales depends on the block. */
} aic_params_3;

/** Bayer noise reduction. */
typedef struct aic_noise_reduction {
    uint32_t param[5]; /**< Tuned; the strength scales the first two, up to 65535. */
} aic_noise_reduction;

/** Three 16-bit values of tuning record rec_3. */
typedef struct aic_rec_3 {
    uint16_t value[3]; /**< Tuned. */
} aic_rec_3;

/** Y edge enhancement, each 0 to 8191 unless tuned higher. */
typedef struct aic_y_edge_enhancement {
    uint16_t param[4]; /**< Tuned, scaled by the sharpness. */
} aic_y_edge_enhancement;

/** Fringe control: mantissas with one shared exponent. */
typedef struct aic_fringe_control {
    uint8_t exponent;          /**< A value is its field * 2^(exponent - the tuned exponent). */
    uint8_t unused;            /**< Zero, or as it was. */
    uint16_t field_0_to_3[4];  /**< From the second table of the tuning record. */
    uint16_t field_4_to_7[4];  /**< Moved by sharpness. */
    uint16_t field_8_to_9[2];  /**< 0 to 8191. */
    int16_t field_10_to_11[2]; /**< Never positive. */
} aic_fringe_control;

/** One 32-bit value. */
typedef struct aic_word {
    uint32_t value; /**< Block 9: its control byte XOR 1. Block 24: frames run before this one. */
} aic_word;

/** One 16-bit value. */
typedef struct aic_half_word {
    uint16_t value; /**< Tuned. */
} aic_half_word;

/** Chroma noise reduction. */
typedef struct aic_chroma_nr {
    uint16_t field[8]; /**< Fields 2 to 7 are scaled by the noise reduction strength. */
} aic_chroma_nr;

/** Chroma tone control: scaled value = mantissa * 2^(shift - tuned base shift). */
typedef struct aic_ctc {
    uint16_t mantissa[6]; /**< 0 to 8191. */
    uint16_t shift;       /**< The tuned base shift and what brought the mantissas within 13 bits. */
    uint16_t value[4];    /**< Tuned values as they are. */
} aic_ctc;

/** Multi-axis colour correction: sixteen 2x2 matrices; coefficient k stands for k * 2^s / 8192. */
typedef struct aic_macc {
    int16_t coeff[16][4]; /**< Sector by sector, row by row. */
} aic_macc;

/** One byte. */
typedef struct aic_byte {
    uint8_t value; /**< The shift of the multi-axis coefficients. */
} aic_byte;

/** Black levels of the four channels as fractions of full scale; 65536 = full scale. */
typedef struct aic_black_level {
    uint32_t level[4]; /**< Channels 0 to 3, truncated. */
} aic_black_level;

/** XNR: a 16-bit parameter that is computed as a 32-bit word, whose upper half is padding. */
typedef union aic_xnr {
    uint16_t param; /**< Tuned. */
    uint32_t word;  /**< As it is computed. */
} aic_xnr;

/** Fixed and tuned filter coefficients. */
typedef struct aic_rec_16 {
    uint32_t value[20]; /**< Two's complement where negative. */
} aic_rec_16;

/** Two 16-bit values. */
typedef struct aic_half_words_2 {
    uint16_t value[2]; /**< 19000, 19000. */
} aic_half_words_2;

/** Two bytes. */
typedef struct aic_bytes_2 {
    uint8_t value[2]; /**< 0, 255. */
} aic_bytes_2;

/** Two curves of 64 entries, 0 to 8191, and 17 parameters. */
typedef struct aic_long_5 {
    uint32_t curve_a[64]; /**< Tuned curve times its tuned scale. */
    uint32_t curve_b[64]; /**< Tuned curve times its tuned scale. */
    uint32_t param[17];   /**< Tuned, two's complement. */
} aic_long_5;

/** Values of tuning record long_6. */
typedef struct aic_long_6 {
    uint32_t param[295]; /**< Two's complement. */
} aic_long_6;

/** Values of tuning record long_7. */
typedef struct aic_long_7 {
    uint32_t param[62]; /**< Two's complement. */
} aic_long_7;

/** Values of tuning record long_13. */
typedef struct aic_long_13 {
    uint32_t param[6]; /**< Two's complement. */
} aic_long_13;

/** Values of tuning record long_11. */
typedef struct aic_long_11 {
    uint32_t param[14]; /**< Two's complement. */
} aic_long_11;

/** Values of tuning record long_12. */
typedef struct aic_long_12 {
    uint32_t param[97]; /**< Two's complement. */
} aic_long_12;

/** A gamma table of 256 or 257 entries. */
typedef struct aic_gamma {
    uint32_t has_257_entries;              /**< 1: 257 entries are in use, 0: 256. */
    uint16_t table[AIC_GAMMA_MAX_ENTRIES]; /**< 4095 stands for the curve's last point. */
    uint16_t padding;                      /**< Zero. */
} aic_gamma;

/** Lens shading: four gain tables over one colour plane of the frame. */
typedef struct aic_lens_shading {
    uint32_t enable;        /**< 1: the tables are valid. */
    uint32_t scaled_width;  /**< Frame width after scaling, low 16 bits. */
    uint32_t scaled_height; /**< Frame height after scaling, low 16 bits. */
    uint32_t columns;       /**< Table entries in a row. */
    uint32_t rows;          /**< Rows of a table. */
    uint32_t format;        /**< Fractional bits of the entries: 8. */
    /** Where the tables are: addresses on 32-bit targets, else byte offsets from the start of the record. */
    uint32_t table[4];
    /** The tables, channel 0 first, each rows x columns entries without a gap. */
    uint16_t entries[4 * AIC_LENS_SHADING_MAX_ENTRIES];
} aic_lens_shading;

/**
 * The fields of every payload type in order: X(payload, field, reading). A field reads as its type tells (plain), as
 * signed numbers in two's complement (signed_words), as rows of a matrix (rows_of_3), or is not listed among the
 * block's fields (unlisted): padding, another view of a field, or tables whose size the frame tells.
 */
#define AIC_FIELDS(X)                                                                                                  \
    X(aic_white_balance, shift, plain)                                                                                 \
    X(aic_white_balance, gain, plain)                                                                                  \
    X(aic_defect_pixel, param, plain)                                                                                  \
    X(aic_defect_pixel, gain, plain)                                                                                   \
    X(aic_long_3, param, signed_words)                                                                                 \
    X(aic_long_3, gain, plain)                                                                                         \
    X(aic_colour_matrix, frac_bits, plain)                                                                             \
    X(aic_colour_matrix, coeff, rows_of_3)                                                                             \
    X(aic_params_3, param, plain)                                                                                      \
    X(aic_noise_reduction, param, plain)                                                                               \
    X(aic_rec_3, value, plain)                                                                                         \
    X(aic_y_edge_enhancement, param, plain)                                                                            \
    X(aic_fringe_control, exponent, plain)                                                                             \
    X(aic_fringe_control, unused, plain)                                                                               \
    X(aic_fringe_control, field_0_to_3, plain)                                                                         \
    X(aic_fringe_control, field_4_to_7, plain)                                                                         \
    X(aic_fringe_control, field_8_to_9, plain)                                                                         \
    X(aic_fringe_control, field_10_to_11, plain)                                                                       \
    X(aic_word, value, plain)                                                                                          \
    X(aic_half_word, value, plain)                                                                                     \
    X(aic_chroma_nr, field, plain)                                                                                     \
    X(aic_ctc, mantissa, plain)                                                                                        \
    X(aic_ctc, shift, plain)                                                                                           \
    X(aic_ctc, value, plain)                                                                                           \
    X(aic_macc, coeff, plain)                                                                                          \
    X(aic_byte, value, plain)                                                                                          \
    X(aic_black_level, level, plain)                                                                                   \
    X(aic_xnr, param, plain)                                                                                           \
    X(aic_xnr, word, unlisted)                                                                                         \
    X(aic_rec_16, value, signed_words)                                                                                 \
    X(aic_half_words_2, value, plain)                                                                                  \
    X(aic_bytes_2, value, plain)                                                                                       \
    X(aic_long_5, curve_a, signed_words)                                                                               \
    X(aic_long_5, curve_b, signed_words)                                                                               \
    X(aic_long_5, param, signed_words)                                                                                 \
    X(aic_long_6, param, signed_words)                                                                                 \
    X(aic_long_7, param, signed_words)                                                                                 \
    X(aic_long_13, param, signed_words)                                                                                \
    X(aic_long_11, param, signed_words)                                                                                \
    X(aic_long_12, param, signed_words)                                                                                \
    X(aic_gamma, has_257_entries, plain)                                                                               \
    X(aic_gamma, table, plain)                                                                                         \
    X(aic_gamma, padding, unlisted)                                                                                    \
    X(aic_lens_shading, enable, plain)                                                                                 \
    X(aic_lens_shading, scaled_width, plain)                                                                           \
    X(aic_lens_shading, scaled_height, plain)                                                                          \
    X(aic_lens_shading, columns, plain)                                                                                \
    X(aic_lens_shading, rows, plain)                                                                                   \
    X(aic_lens_shading, format, plain)                                                                                 \
    X(aic_lens_shading, table, plain)                                                                                  \
    X(aic_lens_shading, entries, unlisted)

#define AIC_PADDING_0
#define AIC_PADDING_2 uint8_t padding[2];
#define AIC_PADDING_4 uint8_t padding[4];
#define AIC_PADDING_6 uint8_t padding[6];
#define AIC_PADDING_7 uint8_t padding[7];
#define AIC_BLOCK_TYPE(name, id_, size_, offset, payload_type, padding_size, family)                                   \
    typedef struct aic_##name##_block {                                                                                \
        uint32_t id;                                                                                                   \
        uint32_t size;                                                                                                 \
        payload_type payload;                                                                                          \
        AIC_PADDING_##padding_size                                                                                     \
    } aic_##name##_block;
AIC_BLOCKS(AIC_BLOCK_TYPE)
#undef AIC_BLOCK_TYPE
#undef AIC_PADDING_0
#undef AIC_PADDING_2
#undef AIC_PADDING_4
#undef AIC_PADDING_6
#undef AIC_PADDING_7

/** The whole record: for each row of AIC_BLOCKS a member @c name of type @c aic_name_block (id, size, payload). */
typedef struct aic_record {
#define AIC_MEMBER(name, id, size, offset, payload, padding, family) aic_##name##_block name;
    AIC_BLOCKS(AIC_MEMBER)
#undef AIC_MEMBER
} aic_record;

#endif
