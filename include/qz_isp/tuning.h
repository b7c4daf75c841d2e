/**
 * @file
 * Tuning data: the record header and slots of a tuning container, the copy of the camera-module characterisation, and
 * the per-frame selection of records.
 */
#ifndef QZ_ISP_TUNING_H
#define QZ_ISP_TUNING_H

#include <stdint.h>

#include "qz_isp/blob.h"
#include "qz_isp/export.h"

struct isp_context;

/** Header of every tuning record. All fields of the container are little-endian. */
typedef struct isp_record {
    uint32_t size;   /**< Bytes of the whole record, this header included. */
    uint8_t version; /**< Record layout version. */
    uint8_t unread;  /**< Not read. */
    uint16_t id;     /**< Record id. */
} isp_record;

/** A slot group of two: a record (null: the slot is empty) and its rows or payload, which lies inside the record. */
typedef struct isp_table_slot {
    isp_record *record; /**< The record, or null. */
    const void *data;   /**< Its rows or payload. */
} isp_table_slot;

/** The slot group of the chroma noise reduction record, which comes in two encodings. */
typedef struct isp_chroma_nr_slot {
    isp_record *record;   /**< The record, or null. */
    const void *data;     /**< Rows of a u16 gain key and eight u8 values, or null. */
    const void *data_alt; /**< Rows of a u16 gain key and eight u16 values, or null. */
} isp_chroma_nr_slot;

/** The slot group of the fringe control record, which newer versions extend. */
typedef struct isp_fringe_control_slot {
    isp_record *record; /**< The record, or null. */
    const void *data;   /**< Main table: rows of a u16 gain key and eight 16-bit values. */
    uintptr_t count2;   /**< Base exponent: a u16 that follows the main table from version 101 on, else 1. */
    const void *extra;  /**< Second table from version 102 on: rows of four u16 values; else null. */
} isp_fringe_control_slot;

/**
 * The records of one tuning set: 50 pointer-wide slots, numbered 0 to 49 in order, so that slot k lies at
 * k * sizeof(void *). A stored set owns its records; a selected set borrows them.
 *
 * Records of the 320 family carry a u16 row count at byte 8 and rows from byte 10; those of the 768 and 1536 families
 * (the long ones) a 32-bit row count at byte 16 and rows from byte 20, each a 32-bit gain key and the values that the
 * field names. tuning_layout.h has the structs of the rows.
 */
typedef struct isp_tuning_set {
    isp_table_slot rec_1;                    /**< 0, 1: held, not read; payload at byte 24. */
    isp_record *rec_2;                       /**< 2: held, not read. */
    isp_record *rec_3;                       /**< 3: u16 values at bytes 8, 10 and 12, for compute blocks. */
    isp_table_slot macc;                     /**< 4, 5: multi-axis colour correction, entries from byte 10. */
    isp_table_slot defect_pixel_correction;  /**< 6, 7 */
    isp_table_slot noise_reduction;          /**< 8, 9 */
    isp_table_slot edge_enhancement;         /**< 10, 11 */
    isp_table_slot y_edge_enhancement;       /**< 12, 13 */
    isp_fringe_control_slot fringe_control;  /**< 14 to 17 */
    isp_chroma_nr_slot chroma_nr;            /**< 18 to 20 */
    isp_record *ctc_config;                  /**< 21: chroma tone control. */
    isp_record *rec_13;                      /**< 22: u16 values at bytes 8 and 10. */
    isp_table_slot temporal_noise_reduction; /**< 23, 24 */
    isp_table_slot xnr;                      /**< 25, 26 */
    isp_record *rec_16;                      /**< 27: u16 values at bytes 8 and 10. */
    uintptr_t unused[2];                     /**< 28, 29: hold no record. */
    isp_table_slot long_3;                   /**< 30, 31: 3 values a row. */
    isp_table_slot long_5;                   /**< 32, 33: 147 values a row. */
    isp_table_slot long_4;                   /**< 34, 35: held, not read. */
    isp_table_slot long_6;                   /**< 36, 37: 295 values a row. */
    isp_table_slot long_7;                   /**< 38, 39: 62 values a row. */
    isp_table_slot long_13;                  /**< 40, 41: 6 values a row. */
    isp_table_slot long_14;                  /**< 42, 43: held, not read. */
    isp_table_slot long_12;                  /**< 44, 45: 97 values a row. */
    isp_table_slot long_11;                  /**< 46, 47: 14 values a row. */
    isp_table_slot rec_20;                   /**< 48, 49: held, not read; payload at byte 20. */
} isp_tuning_set;

/** The selection rule record and its first rule, both inside the caller's container; either may be null. */
typedef struct isp_rule_ref {
    const void *record;     /**< Rule count: the u32 at bytes 12 to 15. */
    const void *first_rule; /**< Rules of 16 bytes; see docs/tuning-container.md. */
} isp_rule_ref;

/** Width and height that selection rules compare: any record that begins with these four fields. */
typedef struct isp_geometry {
    uint16_t unused[2]; /**< Only passed on to the makernote. */
    uint16_t width;     /**< In sensor pixels. */
    uint16_t height;    /**< In sensor pixels. */
} isp_geometry;

/** Description of the sensor, part of the characterisation record. */
typedef struct isp_sensor_description {
    uint32_t unused[2]; /**< Not read. */
    uint16_t width;     /**< Pixel array width. */
    uint16_t height;    /**< Pixel array height. */
    uint16_t bit_depth; /**< Bits per raw sample, 1 to 31; with others the description counts as missing. */
    uint16_t unused_2;  /**< Not read. */
} isp_sensor_description;

/** Header of the characterisation record's entry table. */
typedef struct isp_entry_table_header {
    uint32_t unused[2];   /**< Not read. */
    uint32_t entry_count; /**< Entries of 16 bytes each in the entry table. */
} isp_entry_table_header;

/** Camera-module characterisation record (CMC). In a copy, what the last three fields point to is the copy's own. */
typedef struct isp_cmc {
    const void *cmc_field_0;                    /**< Not used by the library; null in a copy. */
    const void *cmc_field_1;                    /**< Not used by the library; null in a copy. */
    isp_sensor_description *sensor_description; /**< Or null. */
    isp_entry_table_header *entry_table_header; /**< Or null: then the entry table is not looked at. */
    void *entry_table;                          /**< Entries, 16 bytes each. */
} isp_cmc;

/**
 * Files a private copy of every record of a tuning container that a slot takes in the context's tuning sets.
 *
 * The whole container is looked through first: whatever is wrong with it shows before anything is allocated, but for
 * what it takes to follow more than 16 lists in one another. Then come one block for the tuning sets of all set indices
 * and one for each record. Records that claim more rows than they hold are logged: 16 of them, then how many more.
 *
 * Called once per context, on one without tuning sets; those of an earlier call are released, its rules forgotten. On
 * failure everything is released again. The selection rule record is not copied: the container must outlive the context
 * and stay as it is.
 *
 * @return ISP_SUCCESS; ISP_INVALID_ARGUMENT when an argument is null or the container's header invalid, with the
 *         context as it was; ISP_INVALID_DATA when a record is malformed or unknown to the 320 family;
 *         ISP_OUT_OF_MEMORY when memory runs out
 */
QZ_ISP_API uint32_t isp_parse(const isp_blob *container, struct isp_context *context);

/** Frees all tuning sets of a context; accepts null and contexts without any. */
QZ_ISP_API void isp_parse_deinit(struct isp_context *context);

/**
 * Builds the tuning set of a frame: for every slot the record of the first set that has one, taking the sets of the
 * indices that matching selection rules name, in rule order, then those of set index 0. Each index is taken once, so
 * that the time is linear in the rules, 65536 of them about 0.2 ms.
 *
 * @param tuning_mode    order of an index's three sets: 0 takes set 1, 2, 0; 3 takes set 2, 1, 0; others 0, 1, 2
 * @param context        context whose sets are read
 * @param rules          selection rules; evaluated only when @p set_count is at least 2
 * @param frame          geometry that rules of kind 1 compare, or null
 * @param aux_size       geometry that rules of kind 2 compare, or null
 * @param set_count      number of set indices in the context, at most ISP_MAX_SET_INDICES
 * @param selection_list when not null (and its first entry is not 0 or there is a set index), set index 0 is taken
 *                       before the rules' indices; no further entry is read
 * @param output         receives the selection; it borrows the context's records
 * @return ISP_SUCCESS; ISP_INVALID_ARGUMENT when @p output or @p context is null (the output is cleared if it exists)
 */
QZ_ISP_API uint32_t tuningselector(uint32_t tuning_mode, const struct isp_context *context, const isp_rule_ref *rules,
                                   const isp_geometry *frame, const isp_geometry *aux_size, int32_t set_count,
                                   const uint32_t *selection_list, isp_tuning_set *output);

/**
 * Copies the parts of a characterisation record that the library reads.
 *
 * An allocation failure leaves the field null and those after it untouched; so does an entry table that is null or
 * whose size cannot be expressed.
 *
 * @param destination zero-filled copy to fill; release it with cmc_deinit()
 * @param source      the caller's record, or null
 */
QZ_ISP_API void copy_cmc(isp_cmc *destination, const isp_cmc *source);

/** Frees what a copy owns and nulls its fields; accepts null. */
QZ_ISP_API void cmc_deinit(isp_cmc *cmc);

#endif
