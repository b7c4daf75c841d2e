// Which blocks go without a record.
#pragma once

#include "desk/check/records.h"
#include "qz_isp/context.h"

namespace qz::desk {

// By what the library selects, in every order of the sets, for a frame that no rule holds for.
void check_blocks(const checked_container &container, const isp_context &context, const reporter &report);

} // namespace qz::desk
