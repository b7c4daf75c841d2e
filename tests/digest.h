// One number for many bytes, where every bit of a result counts and no two places of it should be written down.
#pragma once

#include <cstddef>
#include <cstdint>

namespace test {

// FNV-1a; continues from @p start.
inline uint64_t digest(const void *data, size_t size, uint64_t start = 0xcbf29ce484222325u)
{
    const auto *bytes = static_cast<const unsigned char *>(data);
    for (size_t i = 0; i < size; ++i)
        start = (start ^ bytes[i]) * 0x100000001b3u;
    return start;
}

} // namespace test
