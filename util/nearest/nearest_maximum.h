// The largest source element of each block.
#pragma once

#include <cstdint>

namespace qz {

struct scaling {
    uint16_t src_width;
    uint16_t src_height;
    uint16_t dst_width;
    uint16_t dst_height;
};

// Each output is the maximum of 0 and of the source elements behind the ceiling-rule index of the output before it, up
// to its own, on both axes.
void block_maxima(const int32_t *src, int32_t *dst, const scaling &size);

} // namespace qz
