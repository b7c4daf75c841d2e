#include "plain_loops.h"

#include <algorithm>

namespace bench {

void plain_block_maxima(const int32_t *src, int src_width, int32_t *dst, int dst_width, int dst_height,
                        const int *row_ends, const int *column_ends)
{
    for (int r = 0; r < dst_height; ++r)
        for (int c = 0; c < dst_width; ++c) {
            int32_t peak = 0;
            for (int y = r == 0 ? 0 : row_ends[r - 1]; y < row_ends[r]; ++y)
                for (int x = c == 0 ? 0 : column_ends[c - 1]; x < column_ends[c]; ++x)
                    peak = std::max(peak, src[y * src_width + x]);
            dst[r * dst_width + c] = peak;
        }
}

} // namespace bench
