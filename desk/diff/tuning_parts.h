// The records of a tuning container as parts to compare.
#pragma once

#include <vector>

#include "desk/base/bytes.h"
#include "desk/diff/parts.h"

namespace qz::desk {

// Of the bytes of a container, to which the parts point.
std::vector<file_part> tuning_parts(byte_view container);

} // namespace qz::desk
