#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "qz_isp/error.h"
#include "qz_isp/table_resize.h"
#include "util/multiversion.h"
#include "util/row_pair.h"
#include "util/row_picker.h"
#include "util/table_axis.h"

namespace {

// What each element type takes for picked elements and weights, and for the weighted sum of two neighbours.
template <typename T>
struct member;
template <>
struct member<uint8_t> {
    static constexpr int fraction_bits = 8;
    using lane = uint16_t;
    using sum = uint16_t; // at most 255 * 256
};
template <>
struct member<uint16_t> {
    static constexpr int fraction_bits = 8;
    using lane = uint16_t;
    using sum = uint32_t;
};
template <>
struct member<uint32_t> {
    static constexpr int fraction_bits = 12;
    using lane = uint32_t;
    using sum = uint32_t; // wraps
};

template <typename T>
using axis_of = qz::fixed_axis<member<T>::fraction_bits>;
template <typename T>
using lane_of = typename member<T>::lane;
template <typename T>
using sum_of = typename member<T>::sum;
template <typename T>
using picker_of = qz::row_picker<lane_of<T>>;

template <typename T>
QZ_MULTIVERSION void weigh_columns(const lane_of<T> *left, const lane_of<T> *right, const lane_of<T> *right_weight,
                                   size_t count, sum_of<T> *__restrict sums)
{
    for (size_t i = 0; i < count; ++i)
        sums[i] = static_cast<sum_of<T>>(left[i] * (axis_of<T>::one - right_weight[i]) +
                                         static_cast<uint32_t>(right[i]) * right_weight[i]);
}

template <typename T>
QZ_MULTIVERSION void blend_rows(const sum_of<T> *above, const sum_of<T> *below, const qz::fixed_neighbours &n,
                                size_t count, T *__restrict out)
{
    constexpr int shift = 2 * member<T>::fraction_bits;
    constexpr uint32_t half = 1u << (shift - 1);
    for (size_t i = 0; i < count; ++i)
        out[i] = static_cast<T>((above[i] * n.left_weight + below[i] * n.right_weight + half) >> shift);
}

template <typename T>
struct table {
    const T *src;
    size_t src_width;
    size_t src_elements;
    uint32_t step_x;
    T *dst;
    size_t dst_width;
    uint32_t dst_height;
    uint32_t step_y;
};

template <typename T>
void resize_columns(const table<T> &t, size_t first, size_t count)
{
    constexpr size_t most = picker_of<T>::most;
    struct row {
        alignas(64) std::array<sum_of<T>, most> sums;
    };
    alignas(64) std::array<lane_of<T>, most> left, right, right_weight;
    qz::row_pair<row> rows;

    const picker_of<T> columns(count, [&](size_t i) {
        const auto n = axis_of<T>::at(static_cast<uint32_t>(first + i) * t.step_x);
        right_weight[i] = static_cast<lane_of<T>>(n.right_weight);
        return n.left;
    });

    for (uint32_t r = 0; r < t.dst_height; ++r) {
        const auto n = axis_of<T>::at(r * t.step_y);
        rows.move_to(n.left, n.left + 1, [&](size_t index, row &made) {
            const size_t begin = index * t.src_width;
            columns.pick_pairs(t.src + begin, t.src_elements - begin, left.data(), right.data());
            weigh_columns<T>(left.data(), right.data(), right_weight.data(), count, made.sums.data());
        });
        blend_rows(rows.above().sums.data(), rows.below().sums.data(), n, count, t.dst + r * t.dst_width + first);
    }
}

template <typename T>
uint32_t resize(const T *src, int32_t src_width, int32_t src_height, T *dst, int32_t dst_width, int32_t dst_height)
{
    using axis = axis_of<T>;
    if (!axis::accepts(src_width, dst_width) || !axis::accepts(src_height, dst_height))
        return ISP_INVALID_ARGUMENT;

    const auto in_width = static_cast<size_t>(src_width);
    const auto width = static_cast<size_t>(dst_width);
    const table<T> t = {.src = src,
                        .src_width = in_width,
                        .src_elements = in_width * static_cast<size_t>(src_height),
                        .step_x = axis(src_width, dst_width).step,
                        .dst = dst,
                        .dst_width = width,
                        .dst_height = static_cast<uint32_t>(dst_height),
                        .step_y = axis(src_height, dst_height).step};
    for (size_t first = 0; first < width; first += picker_of<T>::most)
        resize_columns(t, first, std::min(picker_of<T>::most, width - first));
    return ISP_SUCCESS;
}

} // namespace

uint32_t resize_2d_array_uint8(const uint8_t *src, int32_t src_width, int32_t src_height, uint8_t *dst,
                               int32_t dst_width, int32_t dst_height)
{
    return resize(src, src_width, src_height, dst, dst_width, dst_height);
}

uint32_t resize_2d_array_uint16(const uint16_t *src, int32_t src_width, int32_t src_height, uint16_t *dst,
                                int32_t dst_width, int32_t dst_height)
{
    return resize(src, src_width, src_height, dst, dst_width, dst_height);
}

uint32_t resize_2d_array_uint32(const uint32_t *src, int32_t src_width, int32_t src_height, uint32_t *dst,
                                int32_t dst_width, int32_t dst_height)
{
    return resize(src, src_width, src_height, dst, dst_width, dst_height);
}
