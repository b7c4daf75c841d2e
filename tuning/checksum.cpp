#include "qz_isp/checksum.h"

#include <cstring>

uint32_t get_checksum(const void *data, uint32_t size)
{
    const auto *at = static_cast<const unsigned char *>(data);
    uint32_t sum = 0;
    for (uint32_t words = size / 4; words > 0; --words, at += 4) {
        uint32_t word;
        memcpy(&word, at, sizeof word);
        sum += word;
    }
    return sum;
}
