#include "bench/plain_loops.h"

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

void plain_statistics(const isp_stats &stats, isp_rgbs_cell *rgbs, uint32_t *filter_1, uint32_t *filter_2)
{
    const uint32_t samples_shift = 2 * stats.cell_size_exponent;
    const uint32_t shift = stats.bit_depth + samples_shift - 8;
    const int32_t half = 1 << (shift - 1);
    for (uint32_t i = 0; i < stats.width * stats.height; ++i) {
        const isp_stats_cell &cell = stats.cells[i];
        for (int k = 0; k < 4; ++k)
            rgbs[i].average[k] = static_cast<uint8_t>(std::min((cell.channel_sum[k] + half) >> shift, 255));
        rgbs[i].saturation = static_cast<uint8_t>((((1 << samples_shift) - cell.count) * 255) >> samples_shift);
        filter_1[i] = cell.filter_1_response;
        filter_2[i] = cell.filter_2_response;
    }
}

} // namespace bench
