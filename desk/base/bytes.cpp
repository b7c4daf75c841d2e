#include "desk/base/bytes.h"

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

} // namespace qz::desk
