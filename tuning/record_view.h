// Unaligned little-endian reads from tuning bytes.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace qz {

static_assert(std::endian::native == std::endian::little, "tuning data is little-endian and read in place");

template <typename T>
T read_at(const void *bytes, size_t offset)
{
    T value;
    std::memcpy(&value, static_cast<const uint8_t *>(bytes) + offset, sizeof value);
    return value;
}

} // namespace qz
