// JSON values as text that a person can read.
#pragma once

#include <string>

#include "desk/base/json.h"

namespace qz::desk {

// Objects and lists over several lines, lists of numbers filled into lines, short lists of numbers side by side.
std::string json_text(const json &value);

} // namespace qz::desk
