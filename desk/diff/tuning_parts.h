// The records of a tuning container as parts to compare.
#pragma once

#include <vector>

#include "desk/diff/parts.h"
#include "desk/tuning/container.h"

namespace qz::desk {

std::vector<file_part> tuning_parts(const tuning_container &container);

} // namespace qz::desk
