// The list of a container's records.
#pragma once

#include <string>

#include "desk/tuning/container.h"

namespace qz::tool {

std::string tuning_text(const desk::tuning_container &container);

} // namespace qz::tool
