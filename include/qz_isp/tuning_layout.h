/**
 * @file
 * Layout of tuning records: the ids in a container, the kinds of record and the slots that they fill, and a struct for
 * the rows or values of each kind.
 *
 * A container and its records are little-endian. Every struct is naturally aligned without padding, and stands in its
 * record where its members are aligned as soon as the record itself is: it can be read in place in a tuning set, and
 * has to be copied out of a container. docs/tuning-container.md describes the container around the records.
 */
#ifndef QZ_ISP_TUNING_LAYOUT_H
#define QZ_ISP_TUNING_LAYOUT_H

#include <stdint.h>

/** The first four bytes of a container, `VUXB`, as a number. */
#define ISP_CONTAINER_TAG 0x42585556u

/** Bytes of a record's header, see isp_record. */
#define ISP_RECORD_HEADER_SIZE 8u
/** Byte of the u16 row count in a record of short rows. */
#define ISP_SHORT_ROW_COUNT_AT 8u
/** Byte of the i32 row count in a record of long rows; bytes 8 to 15 are not read. */
#define ISP_LONG_ROW_COUNT_AT 16u

/** First version of a `fringe_control` record in which a u16 base exponent follows the rows. */
#define ISP_FRINGE_COUNT2_SINCE 101u
/** First version of one in which a second table follows that. */
#define ISP_FRINGE_EXTRA_SINCE 102u

/** Version of a `rec_13` record whose second value counts as 0. */
#define ISP_REC_13_WITHOUT_SECOND 100u

/** Id of the selection rule record. */
#define ISP_RULES_ID 709u
/** Byte of the u32 rule count in the selection rule record. */
#define ISP_RULE_COUNT_AT 12u
/** Byte of its first isp_selection_rule. */
#define ISP_RULES_START 16u

/** Id of a set container record less its set index. */
#define ISP_SET_CONTAINER_BASE 64512u
/** Set indices that a container can name, 0 included: ids have 16 bits. */
#define ISP_MAX_SET_INDICES 1024u

/** Ids of a group: one for each id offset. */
#define ISP_TUNING_GROUP_IDS 64u

/** The groups of ids, one for each family and set: X(family, first id, set). */
#define ISP_TUNING_GROUPS(X)                                                                                           \
    X(320, 320, 0)                                                                                                     \
    X(320, 384, 2)                                                                                                     \
    X(320, 448, 1)                                                                                                     \
    X(768, 768, 0)                                                                                                     \
    X(768, 832, 2)                                                                                                     \
    X(768, 896, 1)                                                                                                     \
    X(1536, 1536, 0)                                                                                                   \
    X(1536, 1600, 2)                                                                                                   \
    X(1536, 1664, 1)

/** The slots of isp_tuning_set that hold records, in its order: X(name). */
#define ISP_TUNING_SLOTS(X)                                                                                            \
    X(rec_1)                                                                                                           \
    X(rec_2)                                                                                                           \
    X(rec_3)                                                                                                           \
    X(macc)                                                                                                            \
    X(defect_pixel_correction)                                                                                         \
    X(noise_reduction)                                                                                                 \
    X(edge_enhancement)                                                                                                \
    X(y_edge_enhancement)                                                                                              \
    X(fringe_control)                                                                                                  \
    X(chroma_nr)                                                                                                       \
    X(ctc_config)                                                                                                      \
    X(rec_13)                                                                                                          \
    X(temporal_noise_reduction)                                                                                        \
    X(xnr)                                                                                                             \
    X(rec_16)                                                                                                          \
    X(long_3)                                                                                                          \
    X(long_5)                                                                                                          \
    X(long_4)                                                                                                          \
    X(long_6)                                                                                                          \
    X(long_7)                                                                                                          \
    X(long_13)                                                                                                         \
    X(long_14)                                                                                                         \
    X(long_12)                                                                                                         \
    X(long_11)                                                                                                         \
    X(rec_20)

/** What stands behind the header of a record. */
enum isp_record_layout {
    ISP_LAYOUT_HELD,          /**< Nothing that is read. */
    ISP_LAYOUT_VALUES,        /**< One struct of values. */
    ISP_LAYOUT_ROWS,          /**< A u16 row count and gain-indexed rows, each beginning with its u16 key. */
    ISP_LAYOUT_ROWS_AND_MORE, /**< The same, followed by what the record's version adds. */
    ISP_LAYOUT_ENTRIES,       /**< A u16 count and entries that are chosen by other rules than the gain's. */
    ISP_LAYOUT_LONG_ROWS      /**< An i32 row count and gain-indexed rows of an i32 key and 32-bit values. */
};

/**
 * The kinds of record: X(name, slot, in 320, in 768, in 1536, layout, start, struct, size).
 *
 * - slot: where the record is filed; two kinds share chroma_nr, and whichever comes last wins
 * - in 320, in 768, in 1536: the id offset within a group of each family; 0: the family has no such record
 * - layout: an isp_record_layout without its prefix
 * - start: byte of the first row, or of the values or the payload
 * - struct: of a row, an entry or the values; uint8_t where nothing is read
 * - size: bytes of that struct
 */
#define ISP_TUNING_RECORDS(X)                                                                                          \
    X(rec_1, rec_1, 1, 1, 1, HELD, 24, uint8_t, 1)                                                                     \
    X(rec_2, rec_2, 2, 2, 2, HELD, 8, uint8_t, 1)                                                                      \
    X(rec_3, rec_3, 3, 0, 0, VALUES, 8, isp_rec_3_values, 6)                                                           \
    X(macc, macc, 5, 10, 10, ENTRIES, 10, isp_macc_entry, 132)                                                         \
    X(defect_pixel_correction, defect_pixel_correction, 6, 0, 0, ROWS, 10, isp_defect_pixel_correction_row, 6)         \
    X(noise_reduction, noise_reduction, 7, 0, 0, ROWS, 10, isp_noise_reduction_row, 12)                                \
    X(edge_enhancement, edge_enhancement, 8, 0, 0, ROWS, 10, isp_edge_enhancement_row, 8)                              \
    X(y_edge_enhancement, y_edge_enhancement, 9, 0, 0, ROWS, 10, isp_y_edge_enhancement_row, 10)                       \
    X(fringe_control, fringe_control, 10, 0, 0, ROWS_AND_MORE, 10, isp_fringe_control_row, 18)                         \
    X(chroma_nr, chroma_nr, 11, 0, 0, ROWS, 10, isp_chroma_nr_row, 10)                                                 \
    X(ctc_config, ctc_config, 12, 0, 0, VALUES, 8, isp_ctc_config_values, 22)                                          \
    X(rec_13, rec_13, 13, 15, 15, VALUES, 8, isp_rec_13_values, 4)                                                     \
    X(temporal_noise_reduction, temporal_noise_reduction, 14, 0, 0, ROWS, 10, isp_temporal_noise_reduction_row, 8)     \
    X(xnr, xnr, 15, 0, 0, ROWS, 10, isp_xnr_row, 4)                                                                    \
    X(rec_16, rec_16, 16, 16, 16, VALUES, 8, isp_rec_16_values, 4)                                                     \
    X(chroma_nr_alt, chroma_nr, 18, 0, 0, ROWS, 10, isp_chroma_nr_alt_row, 18)                                         \
    X(rec_20, rec_20, 20, 0, 0, HELD, 20, uint8_t, 1)                                                                  \
    X(long_3, long_3, 0, 3, 3, LONG_ROWS, 20, isp_long_3_row, 16)                                                      \
    X(long_4, long_4, 0, 4, 0, HELD, 20, uint8_t, 1)                                                                   \
    X(long_5, long_5, 0, 5, 5, LONG_ROWS, 20, isp_long_5_row, 592)                                                     \
    X(long_6, long_6, 0, 6, 6, LONG_ROWS, 20, isp_long_6_row, 1184)                                                    \
    X(long_7, long_7, 0, 7, 7, LONG_ROWS, 20, isp_long_7_row, 252)                                                     \
    X(long_11, long_11, 0, 11, 11, LONG_ROWS, 20, isp_long_11_row, 60)                                                 \
    X(long_12, long_12, 0, 12, 12, LONG_ROWS, 20, isp_long_12_row, 392)                                                \
    X(long_13, long_13, 0, 13, 13, LONG_ROWS, 20, isp_long_13_row, 28)                                                 \
    X(long_14, long_14, 0, 14, 0, HELD, 20, uint8_t, 1)

/**
 * The id offsets of the 320 family that no slot takes, yet a container may have: X(offset). Others make it invalid; the
 * other two families may have any.
 */
#define ISP_TUNING_DROPPED_IN_320(X)                                                                                   \
    X(4)                                                                                                               \
    X(17)

/** Values of a `rec_3` record, those of block 6. */
typedef struct isp_rec_3_values {
    uint16_t value[3]; /**< Copied. */
} isp_rec_3_values;

/** Values of a `rec_13` record, those of blocks 12 and 11. */
typedef struct isp_rec_13_values {
    uint16_t value[2]; /**< Copied; see ISP_REC_13_WITHOUT_SECOND. */
} isp_rec_13_values;

/** Values of a `rec_16` record, for block 20. */
typedef struct isp_rec_16_values {
    uint16_t value[2]; /**< The block's value 4, and its values 3 and 5. */
} isp_rec_16_values;

/** Values of a `ctc_config` record, see compute_ctc_config(). */
typedef struct isp_ctc_config_values {
    uint16_t scaled[6];  /**< Multiplied by the saturation factor. */
    uint16_t base_shift; /**< What the block's shift counts from. */
    uint16_t copied[4];  /**< Kept as they are. */
} isp_ctc_config_values;

/** Entry of a `macc` record, see compute_macc(). */
typedef struct isp_macc_entry {
    uint16_t type;         /**< 0: a base set; 1 to 4: replaces the fixed table of that effect. */
    uint16_t key;          /**< What a base set is chosen by. */
    int16_t matrix[16][4]; /**< One 2x2 matrix a sector, row by row, Q13: 8192 = 1.0. */
} isp_macc_entry;

/** Row of a `defect_pixel_correction` record. */
typedef struct isp_defect_pixel_correction_row {
    uint16_t key;      /**< Total gain, 256 = unity. */
    uint16_t param[2]; /**< Parameters of the block. */
} isp_defect_pixel_correction_row;

/** Row of a `noise_reduction` record. */
typedef struct isp_noise_reduction_row {
    uint16_t key;      /**< Total gain, 256 = unity. */
    uint16_t param[5]; /**< Parameters of the block. */
} isp_noise_reduction_row;

/** Row of an `edge_enhancement` record. */
typedef struct isp_edge_enhancement_row {
    uint16_t key;      /**< Total gain, 256 = unity. */
    uint16_t param[3]; /**< Parameters of the block. */
} isp_edge_enhancement_row;

/** Row of a `y_edge_enhancement` record. */
typedef struct isp_y_edge_enhancement_row {
    uint16_t key;      /**< Total gain, 256 = unity. */
    uint16_t param[4]; /**< Parameters of the block. */
} isp_y_edge_enhancement_row;

/** Row of a `fringe_control` record. */
typedef struct isp_fringe_control_row {
    uint16_t key;              /**< Total gain, 256 = unity. */
    uint16_t field_4_to_9[6];  /**< Before they are brought to 13 bits. */
    int16_t field_10_to_11[2]; /**< Likewise. */
} isp_fringe_control_row;

/** Row of a `fringe_control` record's second table. */
typedef struct isp_fringe_control_extra_row {
    uint16_t field_0_to_3[4]; /**< At the key of the first table's row of the same number. */
} isp_fringe_control_extra_row;

/** Row of a `chroma_nr` record of 8-bit fields. */
typedef struct isp_chroma_nr_row {
    uint16_t key;     /**< Total gain, 256 = unity. */
    uint8_t field[8]; /**< Fields of the block; the first two in units of 32. */
} isp_chroma_nr_row;

/** Row of a `chroma_nr` record of 16-bit fields. */
typedef struct isp_chroma_nr_alt_row {
    uint16_t key;      /**< Total gain, 256 = unity. */
    uint16_t field[8]; /**< Fields of the block. */
} isp_chroma_nr_alt_row;

/** Row of a `temporal_noise_reduction` record. */
typedef struct isp_temporal_noise_reduction_row {
    uint16_t key;      /**< Total gain, 256 = unity. */
    uint16_t param[3]; /**< Parameters of the block. */
} isp_temporal_noise_reduction_row;

/** Row of an `xnr` record. */
typedef struct isp_xnr_row {
    uint16_t key;   /**< Total gain, 256 = unity. */
    uint16_t param; /**< Parameter of the block. */
} isp_xnr_row;

/** Row of a `long_3` record. */
typedef struct isp_long_3_row {
    int32_t key;      /**< Total gain, 256 = unity. */
    int32_t param[3]; /**< Parameters of the block. */
} isp_long_3_row;

/** Row of a `long_5` record: two curves and parameters. */
typedef struct isp_long_5_row {
    int32_t key;         /**< Total gain, 256 = unity. */
    int32_t curve_a[64]; /**< Points, before their scale. */
    int32_t curve_b[64]; /**< Points, before their scale. */
    int32_t scale_a;     /**< 512 = 1.0; that of the first row counts. */
    int32_t scale_b;     /**< 512 = 1.0; that of the first row counts. */
    int32_t param[17];   /**< Parameters of the block. */
} isp_long_5_row;

/** Row of a `long_6` record. */
typedef struct isp_long_6_row {
    int32_t key;        /**< Total gain, 256 = unity. */
    int32_t param[295]; /**< Parameters of the block. */
} isp_long_6_row;

/** Row of a `long_7` record. */
typedef struct isp_long_7_row {
    int32_t key;       /**< Total gain, 256 = unity. */
    int32_t param[62]; /**< Parameters of the block. */
} isp_long_7_row;

/** Row of a `long_11` record. */
typedef struct isp_long_11_row {
    int32_t key;       /**< Total gain, 256 = unity. */
    int32_t param[14]; /**< Parameters of the block. */
} isp_long_11_row;

/** Row of a `long_12` record. */
typedef struct isp_long_12_row {
    int32_t key;       /**< Total gain, 256 = unity. */
    int32_t param[97]; /**< Parameters of the block. */
} isp_long_12_row;

/** Row of a `long_13` record. */
typedef struct isp_long_13_row {
    int32_t key;      /**< Total gain, 256 = unity. */
    int32_t param[6]; /**< Parameters of the block. */
} isp_long_13_row;

/**
 * The structs of the records, and their members in order: STRUCT(type, FIELD(member) FIELD(member) ...).
 */
#define ISP_TUNING_STRUCTS(STRUCT, FIELD)                                                                              \
    STRUCT(isp_rec_3_values, FIELD(value))                                                                             \
    STRUCT(isp_rec_13_values, FIELD(value))                                                                            \
    STRUCT(isp_rec_16_values, FIELD(value))                                                                            \
    STRUCT(isp_ctc_config_values, FIELD(scaled) FIELD(base_shift) FIELD(copied))                                       \
    STRUCT(isp_macc_entry, FIELD(type) FIELD(key) FIELD(matrix))                                                       \
    STRUCT(isp_defect_pixel_correction_row, FIELD(key) FIELD(param))                                                   \
    STRUCT(isp_noise_reduction_row, FIELD(key) FIELD(param))                                                           \
    STRUCT(isp_edge_enhancement_row, FIELD(key) FIELD(param))                                                          \
    STRUCT(isp_y_edge_enhancement_row, FIELD(key) FIELD(param))                                                        \
    STRUCT(isp_fringe_control_row, FIELD(key) FIELD(field_4_to_9) FIELD(field_10_to_11))                               \
    STRUCT(isp_fringe_control_extra_row, FIELD(field_0_to_3))                                                          \
    STRUCT(isp_chroma_nr_row, FIELD(key) FIELD(field))                                                                 \
    STRUCT(isp_chroma_nr_alt_row, FIELD(key) FIELD(field))                                                             \
    STRUCT(isp_temporal_noise_reduction_row, FIELD(key) FIELD(param))                                                  \
    STRUCT(isp_xnr_row, FIELD(key) FIELD(param))                                                                       \
    STRUCT(isp_long_3_row, FIELD(key) FIELD(param))                                                                    \
    STRUCT(isp_long_5_row, FIELD(key) FIELD(curve_a) FIELD(curve_b) FIELD(scale_a) FIELD(scale_b) FIELD(param))        \
    STRUCT(isp_long_6_row, FIELD(key) FIELD(param))                                                                    \
    STRUCT(isp_long_7_row, FIELD(key) FIELD(param))                                                                    \
    STRUCT(isp_long_11_row, FIELD(key) FIELD(param))                                                                   \
    STRUCT(isp_long_12_row, FIELD(key) FIELD(param))                                                                   \
    STRUCT(isp_long_13_row, FIELD(key) FIELD(param))

/** A selection rule, see tuningselector(). */
typedef struct isp_selection_rule {
    uint16_t kind;      /**< 1: compares the frame's area, 2: that of the second geometry; others never match. */
    uint16_t op;        /**< Area against threshold, 1 to 5: ==, <, >, <=, >=; others never match. */
    uint16_t set_index; /**< Set index to take records from. */
    uint16_t unused;    /**< Not read. */
    double threshold;   /**< In square pixels. */
} isp_selection_rule;

#endif
