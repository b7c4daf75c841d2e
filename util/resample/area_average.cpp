#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "qz_isp/bicubic.h"
#include "qz_isp/error.h"
#include "util/resample/p10.h"
#include "util/simd/vectors.h"

namespace {

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
struct footprint_axis {
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

// Destination columns side by side, as many as a vector has lanes. Their samples are counted from each column's first
// one: some have a weight, those from head to tail are all 1.
template <int Lanes>
struct column_group {
    uint32_t first[Lanes]; // source column, rising
    uint32_t count;
    uint32_t head; // 0 or 1 samples
    uint32_t tail;
    qz::vec<Lanes> head_weight;
    qz::vec<Lanes> tail_weight[3];
    qz::int_vec<Lanes> in_tail[3]; // mask of the columns that have the sample at all
};

// Columns past dst_width repeat the last one. The numbers of whole samples under two columns differ by 2 at most, where
// a step of nearly a whole number is rounded, and a last one may be there in part: a tail is no longer than 3 samples.
template <int Lanes>
[[gnu::noinline]] void place_group(column_group<Lanes> &group, const footprint_axis &across, uint32_t origin,
                                   uint32_t column, uint32_t dst_width)
{
    footprint prints[Lanes];
    uint32_t whole = UINT32_MAX; // samples of weight 1 in every column, were the first one's 1
    group.count = group.head = 0;
    for (uint32_t lane = 0; lane < Lanes; ++lane) {
        const footprint print = across.under(std::min(column + lane, dst_width - 1));
        prints[lane] = print;
        group.first[lane] = origin + print.first;
        group.count = std::max(group.count, print.count);
        group.head = print.first_weight < 1.0f ? 1 : group.head;
        whole = std::min(whole, print.count - (print.last_weight < 1.0f ? 1 : 0));
    }
    group.tail = std::max(group.head, whole);
    for (int lane = 0; lane < Lanes; ++lane) {
        group.head_weight[lane] = prints[lane].weight(0);
        for (uint32_t i = 0; i < 3; ++i) {
            const float weight = prints[lane].weight(group.tail + i);
            group.tail_weight[i][lane] = weight;
            group.in_tail[i][lane] = weight > 0.0f ? -1 : 0;
        }
    }
}

// Four samples of each column of a group, which lie in the row: sample m of all columns becomes a vector.
template <int Lanes>
QZ_ALWAYS_INLINE void load_samples(qz::vec<Lanes> (&sample)[4], const float *from, const uint32_t (&first)[Lanes])
{
    for (int m = 0; m < 4; ++m)
        qz::load_quads<4>(sample[m], from, first + m);
    qz::transpose_quads<Lanes>(sample[0], sample[1], sample[2], sample[3]);
}

// Samples of source columns beyond the last one are the last one's.
template <int Lanes>
[[gnu::noinline]] void copy_samples(float (&to)[Lanes][4], const float *row, uint32_t width, const uint32_t *first,
                                    uint32_t offset)
{
    for (int lane = 0; lane < Lanes; ++lane) {
        const uint32_t column = first[lane] + offset;
        if (column + 4 <= width)
            memcpy(to[lane], row + column, sizeof to[lane]);
        else
            for (uint32_t m = 0; m < 4; ++m)
                to[lane][m] = row[std::min(column + m, width - 1)];
    }
}

template <int Lanes>
struct lane_numbers {
    uint32_t of_four[Lanes];
    constexpr lane_numbers() : of_four()
    {
        for (uint32_t lane = 0; lane < Lanes; ++lane)
            of_four[lane] = 4 * lane;
    }
};

template <int Lanes>
QZ_ALWAYS_INLINE void load_block(qz::vec<Lanes> (&sample)[4], const float *row, uint32_t width,
                                 const column_group<Lanes> &group, uint32_t offset)
{
    if (group.first[Lanes - 1] + offset + 4 <= width) {
        load_samples<Lanes>(sample, row + offset, group.first);
    } else {
        static constexpr lane_numbers<Lanes> numbers;
        float samples[Lanes][4];
        copy_samples<Lanes>(samples, row, width, group.first, offset);
        load_samples<Lanes>(sample, samples[0], numbers.of_four);
    }
}

// A weight of 0 marks a sample that does not belong to the sum, even if it is not finite.
template <int Lanes>
QZ_ALWAYS_INLINE void add_tail(qz::vec<Lanes> &sum, const qz::vec<Lanes> &sample, float row_weight,
                               const column_group<Lanes> &group, uint32_t i)
{
    qz::vec<Lanes> product = (group.tail_weight[i] * row_weight) * sample;
    qz::select<Lanes>(product, group.in_tail[i], product, qz::vec<Lanes>{});
    sum += product;
}

template <int Lanes>
QZ_ALWAYS_INLINE void add_samples(qz::vec<Lanes> &sum, const float *row, float row_weight, uint32_t width,
                                  const column_group<Lanes> &group)
{
    qz::vec<Lanes> sample[4];
    for (uint32_t k = 0; k < group.count; k += 4) {
        load_block<Lanes>(sample, row, width, group, k);
        if (k >= group.head && k + 4 <= group.tail) {
            for (int m = 0; m < 4; ++m)
                sum += row_weight * sample[m];
            continue;
        }
#pragma GCC unroll 4
        for (uint32_t m = 0; m < 4; ++m) {
            if (k + m < group.head)
                sum += (group.head_weight * row_weight) * sample[m];
            else if (k + m < group.tail)
                sum += row_weight * sample[m];
            else if (k + m < group.count)
                add_tail<Lanes>(sum, sample[m], row_weight, group, k + m - group.tail);
        }
    }
}

// A strip of destination columns as wide as a full-HD picture reduced by four: rows are read from end to end.
constexpr uint32_t strip_width = 512;

// Any columns.
template <int Lanes>
struct placed_columns {
    uint32_t src_width;
    uint32_t groups;
    column_group<Lanes> group[strip_width / Lanes];

    QZ_ALWAYS_INLINE void add_row(qz::vec<Lanes> *sums, const float *row, float weight) const
    {
        const uint32_t width = src_width;
        for (const column_group<Lanes> &columns : std::span(group, groups))
            add_samples<Lanes>(*sums++, row, weight, width, columns);
    }
};

// Whole vectors of columns under which all samples have weight 1.
template <int Lanes>
struct whole_columns {
    // Samples of a column that are loaded at once: narrow vectors take pairs of them with the fewest instructions.
    static constexpr uint32_t run = Lanes == 4 ? 2 : 4;

    uint32_t first; // source column
    uint32_t groups;
    size_t count; // samples of a column, a run at least

    QZ_ALWAYS_INLINE void add_row(qz::vec<Lanes> *sums, const float *row, float weight) const
    {
        row += first;
        for (size_t g = 0; g < groups; ++g, row += Lanes * count)
            add_group(sums[g], row, weight);
    }

  private:
    QZ_ALWAYS_INLINE void add_group(qz::vec<Lanes> &sum, const float *from, float weight) const
    {
        qz::vec<Lanes> total = sum;
        qz::vec<Lanes> sample[run];
        size_t k = 0;
        for (; k + run <= count; k += run) {
            load_run(sample, from + k);
            for (const qz::vec<Lanes> &s : sample)
                total += weight * s;
        }
        if (k < count) { // the rest ends a run that begins before it
            load_run(sample, from + count - run);
            for (uint32_t m = 1; m < run; ++m)
                if (count - k >= run - m)
                    total += weight * sample[m];
        }
        sum = total;
    }

    QZ_ALWAYS_INLINE void load_run(qz::vec<Lanes> (&sample)[run], const float *from) const
    {
        if constexpr (run == 2) {
            qz::load_strided_pairs(sample[0], sample[1], from, count);
        } else {
            for (size_t m = 0; m < run; ++m)
                qz::load_strided_quads(sample[m], from + m * count, run * count);
            qz::transpose_quads<Lanes>(sample[0], sample[1], sample[2], sample[3]);
        }
    }
};

struct downscale_job {
    const float *const *src_planes;
    uint16_t *const *dst_planes;
    uint32_t plane_count;
    uint32_t src_width;
    uint32_t src_height;
    uint32_t dst_width;
    uint32_t dst_height;
    isp_roi region;
    footprint_axis across;
    footprint_axis down;
    float norm; // 1 / (source samples under one destination sample), in units of p10

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        if (across.step == 2.0f && down.step == 2.0f && dst_width >= 2 * Lanes) {
            for (uint32_t plane = 0; plane < plane_count; ++plane)
                halve<Lanes>(src_planes[plane], dst_planes[plane]);
            return;
        }
        const uint32_t whole = whole_samples<Lanes>();
        for (uint32_t column = 0, columns = 0; column < dst_width; column += columns) {
            columns = std::min(dst_width - column, strip_width);
            if (whole > 0 && columns >= Lanes) {
                columns -= columns % Lanes;
                const uint32_t first = region.x + column * whole;
                reduce_planes<Lanes>(whole_columns<Lanes>{.first = first, .groups = columns / Lanes, .count = whole},
                                     column, columns);
            } else {
                placed_columns<Lanes> placed;
                placed.src_width = src_width;
                placed.groups = (columns + Lanes - 1) / Lanes;
                for (uint32_t g = 0; g < placed.groups; ++g)
                    place_group<Lanes>(placed.group[g], across, region.x, column + g * Lanes, dst_width);
                reduce_planes<Lanes>(placed, column, columns);
            }
        }
    }

    // Samples under every column if all of them have weight 1 and there are as many as in a run; otherwise 0.
    template <int Lanes>
    uint32_t whole_samples() const
    {
        const auto count = static_cast<uint32_t>(across.step);
        return static_cast<float>(count) == across.step && count >= whole_columns<Lanes>::run ? count : 0;
    }

    template <int Lanes, typename Columns>
    QZ_ALWAYS_INLINE void reduce_planes(const Columns &strip, uint32_t column, uint32_t columns) const
    {
        for (uint32_t plane = 0; plane < plane_count; ++plane)
            reduce_strip<Lanes>(strip, src_planes[plane], dst_planes[plane] + column, columns);
    }

    template <int Lanes, typename Columns>
    QZ_ALWAYS_INLINE void reduce_strip(const Columns &strip, const float *src, uint16_t *dst, uint32_t columns) const
    {
        qz::vec<Lanes> sums[strip_width / Lanes + 1]; // averages are formed by twos
        uint16_t averages[strip_width + Lanes];
        for (uint32_t r = 0; r < dst_height; ++r) {
            const footprint rows = down.under(r);
            std::fill_n(sums, strip.groups + 1, qz::vec<Lanes>{});
            for (uint32_t k = 0; k < rows.count; ++k) {
                const float *row = src + size_t{std::min(region.y + rows.first + k, src_height - 1)} * src_width;
                const float weight = rows.weight(k);
                if (weight == 1.0f) // most rows: a factor that drops out of the loop
                    strip.add_row(sums, row, 1.0f);
                else
                    strip.add_row(sums, row, weight);
            }
            for (uint32_t g = 0; g < strip.groups; g += 2)
                store_averages<Lanes>(averages + size_t{g} * Lanes, sums[g], sums[g + 1]);
            std::copy_n(averages, columns, dst + size_t{r} * dst_width);
        }
    }

    // Two by two samples under each destination sample.
    template <int Lanes>
    QZ_ALWAYS_INLINE void halve(const float *src, uint16_t *dst) const
    {
        src += size_t{region.y} * src_width + region.x;
        for (uint32_t r = 0; r < dst_height; ++r, src += size_t{2} * src_width, dst += dst_width)
            for (uint32_t next = 0; next < dst_width; next += 2 * Lanes) {
                // The last ones may be the same as some before.
                const uint32_t c = std::min(next, dst_width - 2 * Lanes);
                qz::vec<Lanes> sums[2];
                for (uint32_t i = 0; i < 2; ++i)
                    add_two_by_two<Lanes>(sums[i], src + size_t{2} * (c + i * Lanes));
                store_averages<Lanes>(dst + c, sums[0], sums[1]);
            }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE void add_two_by_two(qz::vec<Lanes> &sum, const float *from) const
    {
        qz::vec<Lanes> sample[2][2];
        for (auto &row : sample) {
            qz::vec<Lanes> low, high;
            qz::load(low, from);
            qz::load(high, from + Lanes);
            qz::every_second<0>(row[0], low, high);
            qz::every_second<1>(row[1], low, high);
            from += src_width;
        }
        sum = sample[0][0] + sample[0][1] + sample[1][0] + sample[1][1];
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE void store_averages(uint16_t *to, const qz::vec<Lanes> &a, const qz::vec<Lanes> &b) const
    {
        qz::short_vec<Lanes> average;
        qz::truncate_to_low_16<Lanes>(average, a * norm + 0.5f, b * norm + 0.5f);
        qz::store(to, average);
    }
};

} // namespace

uint32_t image_downscale_32f_to_u16p10(const float *const *src_planes, uint16_t *const *dst_planes, uint16_t src_width,
                                       uint16_t src_height, uint16_t dst_width, uint16_t dst_height,
                                       uint16_t plane_count, const isp_roi *roi)
{
    if (dst_width >= src_width || dst_height >= src_height || dst_width < 3 || dst_height < 3)
        return ISP_INVALID_ARGUMENT;
    const isp_roi region = roi != nullptr ? *roi : isp_roi{0, 0, src_width, src_height};
    if (region.x >= src_width || region.y >= src_height || region.x + region.width > src_width ||
        region.y + region.height > src_height)
        return ISP_INVALID_ARGUMENT;

    const float step_x = static_cast<float>(region.width) / static_cast<float>(dst_width);
    const float step_y = static_cast<float>(region.height) / static_cast<float>(dst_height);
    const downscale_job job = {.src_planes = src_planes,
                               .dst_planes = dst_planes,
                               .plane_count = plane_count,
                               .src_width = src_width,
                               .src_height = src_height,
                               .dst_width = dst_width,
                               .dst_height = dst_height,
                               .region = region,
                               .across = {.step = step_x, .limit = static_cast<float>(src_width)},
                               .down = {.step = step_y, .limit = static_cast<float>(src_height)},
                               .norm = 1.0f / (step_x * step_y) * qz::p10_one};
    qz::run_widest(job);
    return ISP_SUCCESS;
}
