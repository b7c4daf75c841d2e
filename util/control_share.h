// Signed 8-bit controls.
#pragma once

#include <cstdint>

namespace qz {

// A control's share of its range on either side of 0: -1 at -128, 1 at 127.
constexpr double control_share(int8_t control)
{
    return control < 0 ? control * 0.0078125 : control / 127.0;
}

} // namespace qz
