// Values that stand along a curve.
#pragma once

#include "desk/check/contents/record.h"

namespace qz::desk {

void check_curve_order(const checked_record &record, const reporter &report);

} // namespace qz::desk
