// The JSON source of a tuning container.
#pragma once

#include <string>

#include "desk/base/json.h"
#include "desk/tuning/container.h"

namespace qz::desk {

json container_json(const tuning_container &container);
std::string container_source(const tuning_container &container);

} // namespace qz::desk
