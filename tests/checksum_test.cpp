#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/checksum.h"
#include "tests/guarded.h"

namespace {

// Sums the bytes of each place of a word and weighs the places, instead of adding words.
uint32_t by_places(const unsigned char *data, uint32_t size)
{
    uint32_t places[4] = {};
    for (uint32_t i = 0; i < size / 4 * 4; ++i)
        places[i % 4] += data[i];
    return places[0] + (places[1] << 8) + (places[2] << 16) + (places[3] << 24);
}

TEST(checksum, every_size_and_alignment)
{
    for (uint32_t size = 0; size < 1200; size += size < 140 ? 1 : 97) {
        for (size_t offset = 0; offset < 8; ++offset) {
            const guarded<unsigned char> bytes(offset + size); // what lies behind may not be read
            for (size_t i = 0; i < bytes.size(); ++i)
                bytes[i] = static_cast<unsigned char>(i * 167 + 201);
            EXPECT_EQ(get_checksum(bytes.data() + offset, size), by_places(bytes.data() + offset, size)) << size;
        }
    }
}

TEST(checksum, large_buffers)
{
    std::vector<unsigned char> bytes(3'000'003);
    for (size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(i * i >> 5);
    for (const uint32_t size : {4096u, 65535u, 1048576u, 3'000'000u})
        EXPECT_EQ(get_checksum(bytes.data() + 3, size), by_places(bytes.data() + 3, size)) << size;
}

} // namespace
