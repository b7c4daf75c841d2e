// What the blocks' limits and bits do to a record's values, by the blocks' own routines.
#pragma once

#include "desk/check/contents/record.h"

namespace qz::desk {

void check_limits(const checked_record &record, const reporter &report);

} // namespace qz::desk
