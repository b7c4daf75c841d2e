/**
 * @file
 * Makernote library: an ordered list of typed, named records, and the check of a container's header.
 */
#ifndef QZ_MKN_H
#define QZ_MKN_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#include "qz_isp/blob.h"

#ifdef __cplusplus
extern "C" {
#endif

/** Exported. */
#if defined(__GNUC__)
#define QZ_MKN_API __attribute__((visibility("default")))
#else
#define QZ_MKN_API
#endif

/** Element types of a record. */
enum qz_mkn_format {
    QZ_MKN_I8 = 1,
    QZ_MKN_U8 = 2,
    QZ_MKN_I16 = 3,
    QZ_MKN_U16 = 4,
    QZ_MKN_I32 = 5,
    QZ_MKN_U32 = 6,
    QZ_MKN_TEXT = 9 /**< Characters, without a terminator. */
};

/** Tag of a saved makernote, whose first four bytes are "QMKN". */
#define QZ_MKN_SAVED_TAG 0x4e4b4d51u
/** Version of the saved form. */
#define QZ_MKN_SAVED_VERSION 1u

/** Header of a saved makernote. All fields are little-endian. */
typedef struct qz_mkn_saved_header {
    uint32_t tag;       /**< QZ_MKN_SAVED_TAG. */
    uint32_t version;   /**< QZ_MKN_SAVED_VERSION. */
    uint32_t count;     /**< Records that follow. */
    uint32_t dropped;   /**< Records that could not be kept. */
    uint32_t unused[2]; /**< 0. */
} qz_mkn_saved_header;

/** What precedes a saved record's elements, its key, and zero bytes up to a multiple of 4. */
typedef struct qz_mkn_saved_record {
    uint32_t format;   /**< Element type, see qz_mkn_format. */
    uint32_t name;     /**< Name id. */
    uint32_t count;    /**< Number of elements. */
    uint32_t key_size; /**< Characters of the key, without a terminator; 0: no key. */
} qz_mkn_saved_record;

/** Bytes of a container's header. */
#define QZ_MKN_HEADER_SIZE 24u

/**
 * The 16 characters of the key that opens the version record, in four pieces that the ISP library joins at run time.
 */
#define QZ_MKN_KEY_PIECES                                                                                              \
    {                                                                                                                  \
        "qZ27", "mKn-", "v0I8", "Kp4E"                                                                                 \
    }
/** Characters of the key, without its terminator. */
#define QZ_MKN_KEY_LENGTH 16u

/**
 * A makernote under construction. One thread at a time may use it. It grows with every record: nothing but
 * qz_mkn_clear() makes it smaller again.
 */
typedef struct qz_mkn qz_mkn;

/** One record as it was appended. The pointers stay valid until its makernote is cleared or destroyed. */
typedef struct qz_mkn_record {
    uint32_t format;  /**< Element type, see qz_mkn_format. */
    uint32_t name;    /**< Name id. */
    uint32_t count;   /**< Number of elements. */
    uint32_t size;    /**< Number of bytes at @c data. */
    const void *data; /**< Copy of the elements; null when there are none. */
    const char *key;  /**< Copy of the key, or null when the record has none. */
} qz_mkn_record;

/** Creates an empty makernote. @return null when memory runs out */
QZ_MKN_API qz_mkn *qz_mkn_create(void);

/** Destroys a makernote and its records; accepts null. */
QZ_MKN_API void qz_mkn_destroy(qz_mkn *mkn);

/**
 * Removes all records and the count of dropped ones, as after the makernote of a picture is saved. Room for as many
 * records is kept, their bytes are not.
 */
QZ_MKN_API void qz_mkn_clear(qz_mkn *mkn);

/**
 * Appends one record. A record that cannot be kept (memory runs out, or the format is unknown) is dropped and counted.
 *
 * @param mkn    makernote; null drops the record
 * @param format element type
 * @param name   name id
 * @param data   the elements, copied
 * @param count  number of elements
 * @param key    null, or a terminated string, copied
 * @return true when the record was kept
 */
QZ_MKN_API bool qz_mkn_add_record(qz_mkn *mkn, uint32_t format, uint32_t name, const void *data, uint32_t count,
                                  const char *key);

/** Number of records kept. */
QZ_MKN_API uint32_t qz_mkn_record_count(const qz_mkn *mkn);

/** Number of records dropped. */
QZ_MKN_API uint32_t qz_mkn_dropped_count(const qz_mkn *mkn);

/**
 * Reads back a record, in the order of appending.
 *
 * @return false, and @p record as it was, when @p index is not below qz_mkn_record_count()
 */
QZ_MKN_API bool qz_mkn_get_record(const qz_mkn *mkn, uint32_t index, qz_mkn_record *record);

/** Bytes that qz_mkn_save() writes. */
QZ_MKN_API size_t qz_mkn_saved_size(const qz_mkn *mkn);

/** Writes a makernote in its saved form: a qz_mkn_saved_header and the records in the order of appending. */
QZ_MKN_API void qz_mkn_save(const qz_mkn *mkn, void *bytes);

/**
 * Tells whether a blob is a container with the given tag: at least the 24 bytes of the header, the first four of which
 * are the bytes of @p tag in memory.
 */
QZ_MKN_API bool qz_mkn_is_valid(const isp_blob *blob, uint32_t tag);

#ifdef __cplusplus
}
#endif

#endif
