// What the library says of a container.
#pragma once

#include <cstdint>
#include <string_view>

#include "desk/base/bytes.h"

namespace qz::desk {

// The status of parsing it, an isp_status. The library logs what it limits.
uint32_t library_verdict(byte_view container);

// "accepted", "a malformed record, or one that no container may have".
std::string_view verdict_text(uint32_t verdict);

} // namespace qz::desk
