/**
 * @file
 * A run of bytes that the caller owns: how a tuning container is handed over.
 */
#ifndef QZ_ISP_BLOB_H
#define QZ_ISP_BLOB_H

#include <stdint.h>

/** Address and size of a tuning container. The caller owns the bytes. */
typedef struct isp_blob {
    const void *data; /**< First byte of the container. */
    uint32_t size;    /**< Number of bytes. */
} isp_blob;

#endif
