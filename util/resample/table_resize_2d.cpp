#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "qz_isp/error.h"
#include "qz_isp/table_resize.h"
#include "util/resample/linear_row.h"
#include "util/resample/table_axis.h"

namespace {

template <typename T>
using axis_of = qz::fixed_axis<sizeof(T) == 4 ? 12 : 8>;

template <typename T>
struct table {
    const T *src;
    size_t src_width;
    uint32_t step_x;
    T *dst;
    size_t dst_width;
    uint32_t dst_height;
    uint32_t step_y;
};

// Destination columns from first on, as many as a row holds. Source rows are kept while they are needed: there are
// never more than two, one below the other.
template <typename T>
struct column_block {
    using row = qz::linear_row<T>;

    const table<T> &t;
    size_t first, count;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        typename row::weights weights;
        typename row::picker columns(t.src_width, count, [&](size_t i) {
            const auto n = axis_of<T>::at(static_cast<uint32_t>(first + i) * t.step_x);
            weights.set(i, n);
            return n.left;
        });
        for (size_t i = count; i < columns.padded_count(); ++i)
            weights.set(i, {}); // computed along with the others, not stored
        if constexpr (qz::has_pick_bytes<Lanes>) {
            switch (columns.plan()) {
            case 1: return resize<Lanes, 1>(columns, weights);
            case 2: return resize<Lanes, 2>(columns, weights);
            default: break;
            }
        }
        resize<Lanes, 0>(columns, weights);
    }

    template <int Lanes, int Quads>
    QZ_ALWAYS_INLINE void resize(const typename row::picker &columns, const typename row::weights &weights) const
    {
        typename row::picker::buffer copy;
        row rows[2];
        uint32_t held[2] = {UINT32_MAX, UINT32_MAX};
        constexpr size_t step = sizeof(qz::vec<Lanes>) / sizeof(T);
        const size_t padded = (count + step - 1) / step * step;
        for (uint32_t r = 0; r < t.dst_height; ++r) {
            const auto n = axis_of<T>::at(r * t.step_y);
            for (const uint32_t index : {n.left, n.left + 1}) {
                if (held[index % 2] == index)
                    continue;
                held[index % 2] = index;
                rows[index % 2].template resample<Lanes, Quads>(
                    columns, columns.template prepare<Quads>(t.src + index * t.src_width, copy), weights, padded);
            }
            blend<Lanes>(rows[n.left % 2], rows[(n.left + 1) % 2], n, t.dst + r * t.dst_width + first);
        }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE void blend(const row &above, const row &below, const qz::fixed_neighbours &n, T *out) const
    {
        constexpr size_t step = sizeof(qz::vec<Lanes>) / sizeof(T);
        const auto pair = static_cast<int32_t>(n.left_weight | n.right_weight << 16);
        const qz::int_vec<Lanes> weight = qz::int_vec<Lanes>{} + pair;
        qz::byte_vec<Lanes> blended;
        if (count < step) {
            row::template blend<Lanes>(above, below, weight, 0, blended);
            T narrow[step];
            qz::store(narrow, blended);
            std::copy_n(narrow, count, out);
            return;
        }
        for (size_t next = 0; next < count; next += step) {
            const size_t i = std::min(next, count - step); // the last ones may be the same as some before
            row::template blend<Lanes>(above, below, weight, i, blended);
            qz::store(out + i, blended);
        }
    }
};

template <typename T>
uint32_t resize(const T *src, int32_t src_width, int32_t src_height, T *dst, int32_t dst_width, int32_t dst_height)
{
    using axis = axis_of<T>;
    if (!axis::accepts(src_width, dst_width) || !axis::accepts(src_height, dst_height))
        return ISP_INVALID_ARGUMENT;

    const auto width = static_cast<size_t>(dst_width);
    const table<T> t = {.src = src,
                        .src_width = static_cast<size_t>(src_width),
                        .step_x = axis(src_width, dst_width).step,
                        .dst = dst,
                        .dst_width = width,
                        .dst_height = static_cast<uint32_t>(dst_height),
                        .step_y = axis(src_height, dst_height).step};
    constexpr size_t most = qz::linear_row<T>::picker::most;
    for (size_t first = 0; first < width; first += most)
        qz::run_widest(column_block<T>{t, first, std::min(most, width - first)});
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
