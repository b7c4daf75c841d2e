// Numbers from text, whatever the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace qz::desk {

// The whole text as a decimal number; nothing for other texts.
std::optional<double> number_of(std::string_view text);
std::optional<uint64_t> whole_number_of(std::string_view text);

} // namespace qz::desk
