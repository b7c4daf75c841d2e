// Conversion of the ISP's raw 3A statistics to the context's grids.
#include "qz_isp/statistics.h"

#include <algorithm>
#include <cstring>

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "util/simd/vectors.h"

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

using ints = int_vec<4>;
using uints = uint_vec<4>;
using bytes = vector_of<uint8_t, 16>::type;

// Rounded half up; a sum wraps as a 32-bit number, and the low 8 bits of an average count.
QZ_ALWAYS_INLINE void averages(ints &to, const isp_stats_cell &cell, cell_scale scale)
{
    uints sums;
    std::memcpy(&sums, cell.channel_sum, sizeof sums);
    to = (ints)(sums + (1u << (scale.average_shift - 1))) >> static_cast<int32_t>(scale.average_shift);
    to = (to | (to > 255)) & 255;
}

QZ_ALWAYS_INLINE void saturations(ints &to, const uints &counts, cell_scale scale)
{
    const uints unsaturated = (1u << scale.samples_shift) - counts;
    to = (ints)((unsaturated << 8) - unsaturated) >> static_cast<int32_t>(scale.samples_shift); // * 255
}

// Four cells: the channels of a cell side by side, its count and responses beside those of the others.
QZ_ALWAYS_INLINE void convert_4(const isp_stats_cell *cells, cell_scale scale, isp_rgbs_cell *rgbs, uint32_t *filter_1,
                                uint32_t *filter_2)
{
    ints average[4];
    for (int i = 0; i < 4; ++i)
        averages(average[i], cells[i], scale);
    const auto by_channel = (bytes)(average[0] | average[1] << 8 | average[2] << 16 | average[3] << 24);

    const auto count = [cells](int i) { return static_cast<uint32_t>(cells[i].count); };
    ints saturation;
    saturations(saturation, uints{count(0), count(1), count(2), count(3)}, scale);
    const auto low_bytes = (bytes)saturation; // every fourth

    const bytes first =
        __builtin_shufflevector(by_channel, low_bytes, 0, 4, 8, 12, 16, 1, 5, 9, 13, 20, 2, 6, 10, 14, 24, 3);
    const bytes last =
        __builtin_shufflevector(by_channel, low_bytes, 7, 11, 15, 28, 7, 11, 15, 28, 7, 11, 15, 28, 7, 11, 15, 28);
    auto *to = reinterpret_cast<uint8_t *>(rgbs);
    std::memcpy(to, &first, sizeof first);
    std::memcpy(to + sizeof first, &last, 4 * sizeof *rgbs - sizeof first);

    const uints responses_1 = {cells[0].filter_1_response, cells[1].filter_1_response, cells[2].filter_1_response,
                               cells[3].filter_1_response};
    const uints responses_2 = {cells[0].filter_2_response, cells[1].filter_2_response, cells[2].filter_2_response,
                               cells[3].filter_2_response};
    std::memcpy(filter_1, &responses_1, sizeof responses_1);
    std::memcpy(filter_2, &responses_2, sizeof responses_2);
}

QZ_ALWAYS_INLINE void convert(const isp_stats_cell *cells, size_t count, cell_scale scale,
                              isp_rgbs_cell *__restrict rgbs, uint32_t *__restrict filter_1,
                              uint32_t *__restrict filter_2)
{
    size_t i = 0;
    for (; i + 4 <= count; i += 4)
        convert_4(cells + i, scale, rgbs + i, filter_1 + i, filter_2 + i);
    if (i == count)
        return;

    isp_stats_cell rest[4] = {};
    std::copy(cells + i, cells + count, rest);
    isp_rgbs_cell rest_rgbs[4];
    uint32_t rest_1[4];
    uint32_t rest_2[4];
    convert_4(rest, scale, rest_rgbs, rest_1, rest_2);
    std::copy_n(rest_rgbs, count - i, rgbs + i);
    std::copy_n(rest_1, count - i, filter_1 + i);
    std::copy_n(rest_2, count - i, filter_2 + i);
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
    qz::run_loop<qz::convert>(stats->cells, cells, scale, rgbs_grid->cells, af_grid->filter_1, af_grid->filter_2);
    *rgbs = rgbs_grid;
    *af = af_grid;
    return ISP_SUCCESS;
}
