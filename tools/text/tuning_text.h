// The list of a container's records.
#pragma once

#include <string>

#include "tuning_container.h"

namespace qz::tool {

std::string container_text(const tuning_container &container);

} // namespace qz::tool
