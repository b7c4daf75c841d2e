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

// Cells are converted a block at a time, each quantity in a loop of its own, so that every loop vectorises.
constexpr size_t block_cells = 64;

// Rounded half up; sums wrap as 32-bit numbers, and the low 8 bits count.
inline void average_sums(const isp_stats_cell *cells, size_t count, uint32_t shift, uint8_t (*averages)[4])
{
    const uint32_t half = 1u << (shift - 1);
    for (size_t i = 0; i < count; ++i)
        for (size_t k = 0; k < 4; ++k) {
            const auto sum = static_cast<int32_t>(static_cast<uint32_t>(cells[i].channel_sum[k]) + half);
            averages[i][k] = static_cast<uint8_t>(std::min(sum >> shift, 255));
        }
}

inline void saturation_of_counts(const isp_stats_cell *cells, size_t count, uint32_t shift, uint8_t *saturations)
{
    const uint32_t samples = 1u << shift;
    for (size_t i = 0; i < count; ++i) {
        const uint32_t unsaturated = samples - static_cast<uint32_t>(cells[i].count);
        saturations[i] = static_cast<uint8_t>(static_cast<int32_t>(unsaturated * 255u) >> shift);
    }
}

inline void convert_block(const isp_stats_cell *cells, size_t count, cell_scale scale, isp_rgbs_cell *rgbs)
{
    alignas(64) uint8_t averages[block_cells][4];
    alignas(64) uint8_t saturations[block_cells];
    average_sums(cells, count, scale.average_shift, averages);
    saturation_of_counts(cells, count, scale.samples_shift, saturations);
    for (size_t i = 0; i < count; ++i) {
        std::memcpy(rgbs[i].average, averages[i], sizeof rgbs[i].average);
        rgbs[i].saturation = saturations[i];
    }
}

QZ_MULTIVERSION
void convert(const isp_stats_cell *cells, size_t count, cell_scale scale, isp_rgbs_cell *rgbs, uint32_t *filter_1,
             uint32_t *filter_2)
{
    for (size_t done = 0; done < count; done += block_cells) {
        const size_t block = std::min(block_cells, count - done);
        convert_block(cells + done, block, scale, rgbs + done);
        for (size_t i = done; i < done + block; ++i) {
            filter_1[i] = cells[i].filter_1_response;
            filter_2[i] = cells[i].filter_2_response;
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
    if (cells > context->grid_capacity || (cells > 0 && stats->cells == nullptr) || !qz::scale_of(*stats, scale))
        return ISP_INVALID_DATA;

    rgbs_grid->width = af_grid->width = width;
    rgbs_grid->height = af_grid->height = height;
    af_grid->block_width = af_grid->block_height = static_cast<uint16_t>(stats->af_block_size);
    qz::convert(stats->cells, cells, scale, rgbs_grid->cells, af_grid->filter_1, af_grid->filter_2);
    *rgbs = rgbs_grid;
    *af = af_grid;
    return ISP_SUCCESS;
}
