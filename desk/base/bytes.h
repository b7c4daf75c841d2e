// Bytes as they stand in files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qz::desk {

using byte_view = std::span<const uint8_t>;
using byte_buffer = std::vector<uint8_t>;

// Little-endian; the bytes must be there.
template <typename T>
T read_le(byte_view bytes, size_t offset)
{
    T value = 0;
    for (size_t i = sizeof(T); i-- > 0;)
        value = static_cast<T>((static_cast<uint64_t>(value) << 8) | bytes[offset + i]);
    return value;
}

std::string_view text_of(byte_view bytes);

// Two digits a byte.
std::string hex_text(byte_view bytes);

// Four characters for three bytes.
std::string base64_text(byte_view bytes);

} // namespace qz::desk
