// JSON values from text.
#pragma once

#include <string>
#include <string_view>

#include "desk/base/json.h"

namespace qz::desk {

// Fails with line and column for text that is no JSON, and with the path of an object that has a name twice or of
// values nested too deep.
json parse_json(const std::string &file, std::string_view text);

} // namespace qz::desk
