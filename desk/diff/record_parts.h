// The blocks of records as parts to compare.
#pragma once

#include <vector>

#include "desk/diff/parts.h"
#include "desk/record/layout.h"

namespace qz::desk {

std::vector<file_part> record_parts(const std::vector<record_snapshot> &records);

} // namespace qz::desk
