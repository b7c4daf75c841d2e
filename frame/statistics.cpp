// Conversion of the ISP's raw 3A statistics to the context's grids.
#include "qz_isp/statistics.h"

#include <algorithm>
#include <cstring>

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "util/multiversion.h"

namespace qz {
namespace {

// Shifts that bring a cell's sums to 8 bits.
struct cell_scale {
    uint32_t samples_shift; // 2^samples_shift samples in a cell
    uint32_t average_shift; // 1 to 31
};

// False when a shift is out of range.
bool scale_of(const isp_stats &stats, cell_scale &scale)
{
    const uint64_t samples_shift = 2 * uint64_t{stats.cell_size_exponent};
    const uint64_t sum_bits = stats.bit_depth + samples_shift;
    if (sum_bits < 8 + 1 || sum_bits > 8 + 31 || samples_shift > 31)
        return false;
    scale = {static_cast<uint32_t>(samples_shift), static_cast<uint32_t>(sum_bits - 8)};
    return true;
}

// Rounded half up; the sum wraps as a 32-bit number, and the low 8 bits of the average count.
inline uint32_t average(int32_t sum, uint32_t shift)
{
    const uint32_t half = 1u << (shift - 1);
    const int32_t rounded = static_cast<int32_t>(static_cast<uint32_t>(sum) + half) >> shift;
    return static_cast<uint32_t>(std::min(rounded, 255)) & 255u;
}

inline uint32_t saturation(int32_t count, uint32_t shift)
{
    const uint32_t unsaturated = (1u << shift) - static_cast<uint32_t>(count);
    return static_cast<uint32_t>(static_cast<int32_t>(unsaturated * 255u) >> shift) & 255u;
}

// Cells are converted a block at a time: in 32-bit lanes first, so that the loop vectorises across cells, then put
// together as the 5 bytes of a cell.
constexpr size_t block_cells = 64;

QZ_MULTIVERSION
void convert(const isp_stats_cell *cells, size_t count, cell_scale scale, isp_rgbs_cell *__restrict rgbs,
             uint32_t *__restrict filter_1, uint32_t *__restrict filter_2)
{
    uint32_t averages[block_cells];
    uint32_t saturations[block_cells];
    for (size_t done = 0; done < count; done += block_cells) {
        const size_t block = std::min(block_cells, count - done);
        for (size_t i = 0; i < block; ++i) {
            const isp_stats_cell &cell = cells[done + i];
            averages[i] = average(cell.channel_sum[0], scale.average_shift) |
                          average(cell.channel_sum[1], scale.average_shift) << 8 |
                          average(cell.channel_sum[2], scale.average_shift) << 16 |
                          average(cell.channel_sum[3], scale.average_shift) << 24;
            saturations[i] = saturation(cell.count, scale.samples_shift);
            filter_1[done + i] = cell.filter_1_response;
            filter_2[done + i] = cell.filter_2_response;
        }
        for (size_t i = 0; i < block; ++i) {
            std::memcpy(rgbs[done + i].average, &averages[i], sizeof rgbs->average);
            rgbs[done + i].saturation = static_cast<uint8_t>(saturations[i]);
        }
    }
}

} // namespace
} // namespace qz

uint32_t qz_isp_2_7_statistics_convert(isp_context *context, const isp_stats *stats, const rgbs_grid_desc **rgbs,
                                       const af_grid_desc **af)
{
    if (context == nullptr || stats == nullptr || rgbs == nullptr || af == nullptr)
        return ISP_INVALID_DATA;
    rgbs_grid_desc *rgbs_grid = context->rgbs_grid;
    af_grid_desc *af_grid = context->af_grid;
    if (rgbs_grid == nullptr || af_grid == nullptr)
        return ISP_INVALID_DATA;

    const auto width = static_cast<uint16_t>(stats->width);
    const auto height = static_cast<uint16_t>(stats->height);
    const uint32_t cells = uint32_t{width} * height;
    qz::cell_scale scale = {};
    if (cells > context->grid_capacity || (cells > 0 && (stats->cells == nullptr || !qz::scale_of(*stats, scale))))
        return ISP_INVALID_DATA;

    rgbs_grid->width = af_grid->width = width;
    rgbs_grid->height = af_grid->height = height;
    af_grid->block_width = af_grid->block_height = static_cast<uint16_t>(stats->af_block_size);
    qz::convert(stats->cells, cells, scale, rgbs_grid->cells, af_grid->filter_1, af_grid->filter_2);
    *rgbs = rgbs_grid;
    *af = af_grid;
    return ISP_SUCCESS;
}
