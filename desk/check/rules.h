// The selection rules of a container.
#pragma once

#include "desk/check/records.h"

namespace qz::desk {

void check_rules(const checked_container &container, const reporter &report);

} // namespace qz::desk
