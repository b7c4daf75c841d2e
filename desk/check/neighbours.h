// Records of one kind in neighbouring sets, between which frames change.
#pragma once

#include <vector>

#include "desk/check/contents/record.h"

namespace qz::desk {

// Values that differ from those of the neighbour by far more than the rest of the record. Records by set index and set.
void check_neighbours(const std::vector<checked_record> &records, const reporter &report);

} // namespace qz::desk
