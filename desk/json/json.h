// JSON values, their members in the order of the file.
#pragma once

#include <nlohmann/json_fwd.hpp>

namespace qz::desk {

// Only the files that make or look into values include all of nlohmann/json.hpp.
using json = nlohmann::ordered_json;

} // namespace qz::desk
