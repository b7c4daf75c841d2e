// What a name could have been, for messages.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace qz::desk {

// "; did you mean hue?", for a name that differs from what was found in few letters; empty where there is none.
std::string did_you_mean(std::string_view found, std::span<const std::string_view> names);

// "one of gain, hue, sharpness; did you mean hue?"
std::string one_of(std::span<const std::string_view> names, std::string_view found);

} // namespace qz::desk
