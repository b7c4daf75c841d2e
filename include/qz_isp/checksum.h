/**
 * @file
 * Checksum of a data buffer.
 */
#ifndef QZ_ISP_CHECKSUM_H
#define QZ_ISP_CHECKSUM_H

#include <stdint.h>

#include "qz_isp/export.h"

/**
 * Sum modulo 2^32 of the buffer's little-endian 32-bit words.
 *
 * @param data first byte; needs no particular alignment, not read when @p size is below 4
 * @param size bytes in the buffer; the last size mod 4 bytes are ignored
 */
QZ_ISP_API uint32_t get_checksum(const void *data, uint32_t size);

#endif
