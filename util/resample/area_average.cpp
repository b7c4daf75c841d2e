#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "qz_isp/bicubic.h"
#include "util/lanes.h"
#include "util/multiversion.h"
#include "util/p10.h"

namespace {

using qz::f32x4;

// Source samples under one destination sample along one axis, counted from the region's origin.
struct footprint {
    uint32_t first;
    uint32_t count;
    float first_weight;
    float last_weight; // unless the last sample is also the first

    float weight(uint32_t k) const
    {
        if (k >= count)
            return 0.0f;
        if (k == 0)
            return first_weight;
        return k + 1 == count ? last_weight : 1.0f;
    }
};

// One axis: step source samples a destination sample, and nothing beyond limit source samples.
struct axis {
    float step;
    float limit;

    float end(uint32_t count) const { return std::min(static_cast<float>(count) * step, limit); }

    footprint under(uint32_t index) const
    {
        const float begin = end(index);
        const float stop = end(index + 1);
        const auto first = static_cast<int32_t>(begin);
        const auto last = static_cast<int32_t>(stop);
        const float rest = stop - static_cast<float>(last);
        return {.first = static_cast<uint32_t>(first),
                .count = static_cast<uint32_t>(last - first) + (rest > 0.0f ? 1u : 0u),
                .first_weight = 1.0f - (begin - static_cast<float>(first)),
                .last_weight = rest > 0.0f ? rest : 1.0f};
    }
};

// Four destination columns side by side, their samples taken in blocks of four source columns. Between a head and a
// tail of weighted blocks all weights are 1.
struct column_group {
    uint32_t first[4]; // source column, rising
    uint32_t head;     // 0 or 1 blocks
    uint32_t tail;     // first block of the tail, at most two
    uint32_t blocks;
    f32x4 head_weight[4];
    f32x4 tail_weight[2][4];
};

struct sample_block {
    f32x4 column[4];
};

[[gnu::always_inline]] inline sample_block inner_block(const float *row, const uint32_t *first)
{
    f32x4 c0 = qz::load4(row + first[0]);
    f32x4 c1 = qz::load4(row + first[1]);
    f32x4 c2 = qz::load4(row + first[2]);
    f32x4 c3 = qz::load4(row + first[3]);
    qz::transpose4(c0, c1, c2, c3);
    return {{c0, c1, c2, c3}};
}

// Samples of source columns beyond the last one are the last one's.
[[gnu::noinline]] void edge_block(const float *row, uint32_t width, const uint32_t *first, uint32_t offset,
                                  float *samples)
{
    for (uint32_t m = 0; m < 4; ++m)
        for (uint32_t lane = 0; lane < 4; ++lane)
            samples[4 * m + lane] = row[std::min(first[lane] + offset + m, width - 1)];
}

[[gnu::always_inline]] inline sample_block block_at(const float *row, uint32_t width, const column_group &group,
                                                    uint32_t block)
{
    const uint32_t offset = 4 * block;
    if (group.first[3] + offset + 4 <= width)
        return inner_block(row + offset, group.first);
    float samples[16];
    edge_block(row, width, group.first, offset, samples);
    return {{qz::load4(samples), qz::load4(samples + 4), qz::load4(samples + 8), qz::load4(samples + 12)}};
}

// A weight of 0 marks a sample that does not belong to the sum, even if it is not finite.
[[gnu::always_inline]] inline f32x4 add_weighted(f32x4 sum, const f32x4 *weight, float row_weight,
                                                 const sample_block &samples)
{
    for (uint32_t m = 0; m < 4; ++m) {
        const f32x4 product = (weight[m] * row_weight) * samples.column[m];
        sum += weight[m] > 0.0f ? product : f32x4{};
    }
    return sum;
}

[[gnu::always_inline]] inline f32x4 add_samples(f32x4 sum, const float *row, float row_weight, uint32_t width,
                                                const column_group &group)
{
    if (group.head != 0)
        sum = add_weighted(sum, group.head_weight, row_weight, block_at(row, width, group, 0));
    uint32_t block = group.head;
    for (; block < group.tail; ++block) {
        const sample_block samples = inner_block(row + size_t{4} * block, group.first);
        sum += row_weight * samples.column[0];
        sum += row_weight * samples.column[1];
        sum += row_weight * samples.column[2];
        sum += row_weight * samples.column[3];
    }
    for (; block < group.blocks; ++block)
        sum = add_weighted(sum, group.tail_weight[block - group.tail], row_weight, block_at(row, width, group, block));
    return sum;
}

[[gnu::always_inline]] inline void add_row(f32x4 *sums, const float *row, float weight, uint32_t width,
                                           std::span<const column_group> groups)
{
    if (weight == 1.0f) { // most rows: a factor that drops out of the loop
        for (size_t g = 0; g < groups.size(); ++g)
            sums[g] = add_samples(sums[g], row, 1.0f, width, groups[g]);
    } else {
        for (size_t g = 0; g < groups.size(); ++g)
            sums[g] = add_samples(sums[g], row, weight, width, groups[g]);
    }
}

// Columns past dst_width repeat the last one.
column_group group_at(const axis &across, uint32_t origin, uint32_t column, uint32_t dst_width)
{
    column_group group = {};
    footprint prints[4];
    uint32_t most = 0;
    uint32_t whole = UINT32_MAX; // samples of weight 1 in every column, were the first one's 1
    bool weighted_first = false;
    for (uint32_t lane = 0; lane < 4; ++lane) {
        const footprint print = across.under(std::min(column + lane, dst_width - 1));
        prints[lane] = print;
        group.first[lane] = origin + print.first;
        most = std::max(most, print.count);
        whole = std::min(whole, print.count - (print.last_weight < 1.0f ? 1 : 0));
        weighted_first = weighted_first || print.first_weight < 1.0f;
    }

    group.blocks = (most + 3) / 4;
    group.head = (weighted_first || whole < 4) && most != 0 ? 1 : 0;
    group.tail = std::max(group.head, whole / 4);
    const auto set_weights = [&prints](f32x4 *weights, uint32_t block) {
        for (uint32_t m = 0; m < 4; ++m)
            for (uint32_t lane = 0; lane < 4; ++lane)
                weights[m][lane] = prints[lane].weight(4 * block + m);
    };
    set_weights(group.head_weight, 0);
    set_weights(group.tail_weight[0], group.tail);
    set_weights(group.tail_weight[1], group.tail + 1);
    return group;
}

struct downscale_job {
    uint32_t src_width;
    uint32_t src_height;
    uint32_t dst_width;
    uint32_t dst_height;
    isp_roi region;
    axis across;
    axis down;
    float norm; // 1 / (source samples under one destination sample)
};

// A strip of destination columns as wide as a full-HD picture reduced by four: rows are read from end to end.
constexpr uint32_t strip_groups = 128;
constexpr uint32_t strip_width = 4 * strip_groups;

QZ_MULTIVERSION void reduce_strip(const downscale_job &job, const column_group *groups, const float *src, uint16_t *dst,
                                  uint32_t columns)
{
    const uint32_t group_count = (columns + 3) / 4;
    for (uint32_t r = 0; r < job.dst_height; ++r) {
        const footprint rows = job.down.under(r);
        f32x4 sums[strip_groups];
        std::fill_n(sums, group_count, f32x4{});
        for (uint32_t k = 0; k < rows.count; ++k) {
            const size_t row = std::min(job.region.y + rows.first + k, job.src_height - 1);
            add_row(sums, src + row * job.src_width, rows.weight(k), job.src_width, {groups, group_count});
        }

        uint16_t averages[strip_width];
        for (uint32_t g = 0; g < group_count; ++g)
            for (uint32_t lane = 0; lane < 4; ++lane)
                averages[4 * g + lane] =
                    qz::truncate_to_p10(sums[g][lane] * job.norm + 0.00048828125f); // + half a unit
        std::copy_n(averages, columns, dst + size_t{r} * job.dst_width);
    }
}

void reduce(const downscale_job &job, const float *const *src_planes, uint16_t *const *dst_planes, uint32_t plane_count)
{
    for (uint32_t column = 0; column < job.dst_width; column += strip_width) {
        const uint32_t columns = std::min(job.dst_width - column, strip_width);
        column_group groups[strip_groups];
        for (uint32_t c = 0; c < columns; c += 4)
            groups[c / 4] = group_at(job.across, job.region.x, column + c, job.dst_width);
        for (uint32_t plane = 0; plane < plane_count; ++plane)
            reduce_strip(job, groups, src_planes[plane], dst_planes[plane] + column, columns);
    }
}

} // namespace

uint32_t image_downscale_32f_to_u16p10(const float *const *src_planes, uint16_t *const *dst_planes, uint16_t src_width,
                                       uint16_t src_height, uint16_t dst_width, uint16_t dst_height,
                                       uint16_t plane_count, const isp_roi *roi)
{
    if (dst_width >= src_width || dst_height >= src_height || dst_width < 3 || dst_height < 3)
        return 32;
    const isp_roi region = roi != nullptr ? *roi : isp_roi{0, 0, src_width, src_height};
    if (region.x >= src_width || region.y >= src_height || region.x + region.width > src_width ||
        region.y + region.height > src_height)
        return 32;

    const float step_x = static_cast<float>(region.width) / static_cast<float>(dst_width);
    const float step_y = static_cast<float>(region.height) / static_cast<float>(dst_height);
    const downscale_job job = {.src_width = src_width,
                               .src_height = src_height,
                               .dst_width = dst_width,
                               .dst_height = dst_height,
                               .region = region,
                               .across = {.step = step_x, .limit = static_cast<float>(src_width)},
                               .down = {.step = step_y, .limit = static_cast<float>(src_height)},
                               .norm = 1.0f / (step_x * step_y)};
    reduce(job, src_planes, dst_planes, plane_count);
    return 0;
}
