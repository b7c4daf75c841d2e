// The sample tuning and scene that are built into the program.
#pragma once

#include <string_view>

namespace qz::tool {

extern const std::string_view sample_tuning;
extern const std::string_view sample_scene;

} // namespace qz::tool
