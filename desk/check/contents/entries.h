// The entries of a multi-axis record.
#pragma once

#include "desk/check/contents/record.h"

namespace qz::desk {

void check_entries(const checked_record &record, const reporter &report);

} // namespace qz::desk
