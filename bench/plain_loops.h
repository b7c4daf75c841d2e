// Straightforward loops, for routines that no other library has.
#pragma once

#include <cstdint>

#include "qz_isp/statistics.h"

namespace bench {

// Row and column ends are one behind the last element of each block.
void plain_block_maxima(const int32_t *src, int src_width, int32_t *dst, int dst_width, int dst_height,
                        const int *row_ends, const int *column_ends);

// Cell by cell, as the conversion is defined.
void plain_statistics(const isp_stats &stats, isp_rgbs_cell *rgbs, uint32_t *filter_1, uint32_t *filter_2);

} // namespace bench
