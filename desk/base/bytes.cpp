#include "desk/base/bytes.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace qz::desk {

std::string_view text_of(byte_view bytes)
{
    return {reinterpret_cast<const char *>(bytes.data()), bytes.size()};
}

std::string hex_text(byte_view bytes)
{
    return fmt::format("{:02x}", fmt::join(bytes, ""));
}

std::string base64_text(byte_view bytes)
{
    constexpr std::string_view digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (size_t i = 0; i < bytes.size(); i += 3) {
        const byte_view group = bytes.subspan(i, std::min<size_t>(3, bytes.size() - i));
        uint32_t bits = 0;
        for (size_t byte = 0; byte < 3; ++byte)
            bits = bits << 8 | (byte < group.size() ? group[byte] : 0u);
        for (size_t digit = 0; digit < 4; ++digit)
            text += digit <= group.size() ? digits[bits >> (18 - 6 * digit) & 63] : '=';
    }
    return text;
}

} // namespace qz::desk
