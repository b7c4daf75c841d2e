#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "qz_isp/bicubic.h"
#include "util/lanes.h"
#include "util/p10.h"

namespace {

using qz::f32x4;

// Source samples under one destination sample along one axis, counted from the region's origin.
struct span {
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

    span span_of(uint32_t index) const
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

// Four destination columns side by side, their samples taken in blocks of four source columns. The samples of block 0
// and of the tail, at most two blocks, have weights of their own; all others have weight 1.
struct column_group {
    uint32_t first[4]; // source column, rising
    uint32_t blocks;
    uint32_t tail; // first block of the tail
    f32x4 weight[3][4];
};

struct block_of_samples {
    f32x4 column[4];
};

// Samples of source columns beyond the last one are the last one's.
inline block_of_samples block_at(const float *row, uint32_t width, const column_group &group, uint32_t block)
{
    const uint32_t offset = 4 * block;
    block_of_samples samples;
    if (group.first[3] + offset + 4 <= width) {
        for (uint32_t lane = 0; lane < 4; ++lane)
            samples.column[lane] = qz::load4(row + group.first[lane] + offset);
        qz::transpose4(samples.column[0], samples.column[1], samples.column[2], samples.column[3]);
    } else {
        for (uint32_t m = 0; m < 4; ++m)
            for (uint32_t lane = 0; lane < 4; ++lane)
                samples.column[m][lane] = row[std::min(group.first[lane] + offset + m, width - 1)];
    }
    return samples;
}

// A weight of 0 marks a sample that does not belong to the sum, even if it is not finite.
inline f32x4 add_weighted(f32x4 sum, f32x4 weight, float row_weight, f32x4 sample)
{
    return sum + (weight > 0.0f ? (weight * row_weight) * sample : f32x4{});
}

inline f32x4 add_row(f32x4 sum, const float *row, uint32_t width, const column_group &group, float row_weight)
{
    for (uint32_t block = 0; block < group.blocks; ++block) {
        const block_of_samples samples = block_at(row, width, group, block);
        if (block == 0 || block >= group.tail) {
            const f32x4 *weight = group.weight[block == 0 ? 0 : block - group.tail + 1];
            for (uint32_t m = 0; m < 4; ++m)
                sum = add_weighted(sum, weight[m], row_weight, samples.column[m]);
        } else {
            for (uint32_t m = 0; m < 4; ++m)
                sum += row_weight * samples.column[m];
        }
    }
    return sum;
}

// Columns past dst_width repeat the last one.
column_group group_at(const axis &across, uint32_t origin, uint32_t column, uint32_t dst_width)
{
    column_group group = {};
    span spans[4];
    uint32_t most = 0;
    uint32_t fewest = UINT32_MAX;
    for (uint32_t lane = 0; lane < 4; ++lane) {
        spans[lane] = across.span_of(std::min(column + lane, dst_width - 1));
        group.first[lane] = origin + spans[lane].first;
        most = std::max(most, spans[lane].count);
        fewest = std::min(fewest, spans[lane].count);
    }
    group.blocks = (most + 3) / 4;
    group.tail = fewest > 4 ? (fewest - 1) / 4 : 1;
    for (uint32_t part = 0; part < 3; ++part) {
        const uint32_t block = part == 0 ? 0 : group.tail + part - 1;
        for (uint32_t m = 0; m < 4; ++m)
            for (uint32_t lane = 0; lane < 4; ++lane)
                group.weight[part][m][lane] = spans[lane].weight(4 * block + m);
    }
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

constexpr uint32_t strip_groups = 32;
constexpr uint32_t strip_width = 4 * strip_groups;

// Destination columns first_column .. first_column + columns - 1 of one plane.
void reduce_strip(const downscale_job &job, const column_group *groups, const float *src, uint16_t *dst,
                  uint32_t columns)
{
    const uint32_t group_count = (columns + 3) / 4;
    for (uint32_t r = 0; r < job.dst_height; ++r) {
        const span rows = job.down.span_of(r);
        f32x4 sums[strip_groups] = {};
        for (uint32_t k = 0; k < rows.count; ++k) {
            const size_t row = std::min(job.region.y + rows.first + k, job.src_height - 1);
            const float *samples = src + row * job.src_width;
            const float weight = rows.weight(k);
            for (uint32_t g = 0; g < group_count; ++g)
                sums[g] = add_row(sums[g], samples, job.src_width, groups[g], weight);
        }

        uint16_t averages[strip_width];
        for (uint32_t g = 0; g < group_count; ++g)
            for (uint32_t lane = 0; lane < 4; ++lane)
                averages[4 * g + lane] = qz::truncate_to_p10(sums[g][lane] * job.norm + 0.00048828125f);
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
