// Checking a tuning: everything that is wrong, odd or without effect in it.
#pragma once

#include <cstdint>

#include "desk/base/bytes.h"
#include "desk/check/finding.h"

namespace qz::desk {

// Gives every finding to the sink: the library's verdict, then those of the records in the container's order, of
// neighbouring sets, of the rules and of the blocks. The verdict, an isp_status. Time and memory are linear in the
// container's bytes, but for sorting.
uint32_t check_tuning(byte_view container, const finding_sink &sink);

} // namespace qz::desk
