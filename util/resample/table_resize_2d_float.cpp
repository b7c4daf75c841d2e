#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

#include "qz_isp/error.h"
#include "qz_isp/table_resize.h"
#include "util/float_to_int.h"
#include "util/nearest/row_picker.h"
#include "util/simd/dispatch.h"

namespace {

class float_axis {
  public:
    float_axis(int32_t src_count, int32_t dst_count)
        : last_(src_count - 1), step_(static_cast<float>(src_count - 1) / static_cast<float>(dst_count - 1))
    {}

    struct neighbours {
        uint32_t left;
        uint32_t right;
        float right_weight;
    };

    neighbours operator[](int32_t output) const
    {
        const float position = static_cast<float>(output) * step_;
        // Only tables of more than 65536 rows lose bits here, and their weights grow accordingly.
        const int32_t left = static_cast<uint16_t>(qz::truncate_to_i32(position));
        return {static_cast<uint32_t>(left), static_cast<uint32_t>(left < last_ ? left + 1 : left),
                position - static_cast<float>(left)};
    }

  private:
    int32_t last_;
    float step_;
};

struct table {
    const float *src;
    size_t src_width;
    size_t src_elements;
    float *dst;
    size_t dst_width;
    int32_t dst_height;
    float_axis across, down;
};

using picker = qz::row_picker<uint32_t>;

// The neighbours of each output column, times their weights. They are not added up here: the sum has an order of its
// own.
struct row {
    alignas(64) std::array<float, picker::most> left, right;
};

QZ_ALWAYS_INLINE void blend_rows(const row &above, const row &below, float below_weight, size_t count,
                                 float *__restrict out)
{
    const float above_weight = 1.0f - below_weight;
    for (size_t i = 0; i < count; ++i) {
        const float upper = above.left[i] * above_weight + above.right[i] * above_weight;
        out[i] = below.right[i] * below_weight + (below.left[i] * below_weight + upper);
    }
}

void resize_columns(const table &t, size_t first, size_t count)
{
    alignas(64) std::array<float, picker::most> right_weight;
    size_t inside = 0; // columns that have a right neighbour; those behind them lie on the last source column
    const picker columns(count, [&](size_t i) {
        const float_axis::neighbours n = t.across[static_cast<int32_t>(first + i)];
        right_weight[i] = n.right_weight;
        inside += n.left != n.right;
        return n.left == n.right ? n.left - 1 : n.left;
    });

    // Source rows are kept while they are needed: there are never more than two, one below the other.
    row rows[2];
    uint32_t held[2] = {UINT32_MAX, UINT32_MAX};
    for (int32_t r = 0; r < t.dst_height; ++r) {
        const float_axis::neighbours n = t.down[r];
        for (const uint32_t index : {n.left, n.right}) {
            if (held[index % 2] == index)
                continue;
            held[index % 2] = index;
            row &made = rows[index % 2];
            const size_t begin = index * t.src_width;
            columns.pick_weighted_pairs(t.src + begin, t.src_elements - begin, right_weight.data(), made.left.data(),
                                        made.right.data());
            const float last = t.src[begin + t.src_width - 1];
            for (size_t i = inside; i < count; ++i) {
                made.left[i] = last * (1.0f - right_weight[i]);
                made.right[i] = last * right_weight[i];
            }
        }
        qz::run_loop<blend_rows>(rows[n.left % 2], rows[n.right % 2], n.right_weight, count,
                                 t.dst + static_cast<size_t>(r) * t.dst_width + first);
    }
}

} // namespace

uint32_t resize_2d_array_float(const float *src, uint16_t src_width, int32_t src_height, float *dst, uint16_t dst_width,
                               int32_t dst_height)
{
    if (src_width < 2 || src_height < 2 || dst_width < 2 || dst_height < 2)
        return ISP_INVALID_ARGUMENT;

    const table t = {.src = src,
                     .src_width = src_width,
                     .src_elements = src_width * static_cast<size_t>(src_height),
                     .dst = dst,
                     .dst_width = dst_width,
                     .dst_height = dst_height,
                     .across = float_axis(src_width, dst_width),
                     .down = float_axis(src_height, dst_height)};
    for (size_t first = 0; first < dst_width; first += picker::most)
        resize_columns(t, first, std::min(picker::most, dst_width - first));
    return ISP_SUCCESS;
}
