#include <cstddef>
#include <cstdint>

#include "qz_isp/error.h"
#include "qz_isp/table_resize.h"
#include "util/float_to_int.h"
#include "util/table_axis.h"

namespace {

template <int fraction_bits, typename T>
uint32_t resize(const T *src, int32_t src_width, int32_t src_height, T *dst, int32_t dst_width, int32_t dst_height)
{
    using axis = qz::fixed_axis<fraction_bits>;
    if (!axis::accepts(src_width, dst_width) || !axis::accepts(src_height, dst_height))
        return ISP_INVALID_ARGUMENT;

    const axis across(src_width, dst_width);
    const axis down(src_height, dst_height);
    uint32_t y = 0;
    for (int32_t row = 0; row < dst_height; ++row, y += down.step) {
        const qz::fixed_neighbours v = axis::at(y);
        const T *top = src + static_cast<size_t>(v.left) * static_cast<size_t>(src_width);
        const T *bottom = top + src_width;
        uint32_t x = 0;
        for (int32_t column = 0; column < dst_width; ++column, x += across.step) {
            const qz::fixed_neighbours h = axis::at(x);
            const uint32_t upper = top[h.left] * h.left_weight + top[h.left + 1] * h.right_weight;
            const uint32_t lower = bottom[h.left] * h.left_weight + bottom[h.left + 1] * h.right_weight;
            const uint32_t sum = upper * v.left_weight + lower * v.right_weight;
            *dst++ = static_cast<T>((sum + (1u << (2 * fraction_bits - 1))) >> (2 * fraction_bits));
        }
    }
    return ISP_SUCCESS;
}

struct float_neighbours {
    int32_t left;
    int32_t right;
    float right_weight;
};

float_neighbours float_neighbours_at(float position, int32_t src_count)
{
    // Only positions of tables with more than 65536 rows lose bits here, and their weights grow accordingly.
    const int32_t left = static_cast<uint16_t>(qz::truncate_to_i32(position));
    const int32_t right = left < src_count - 1 ? left + 1 : left;
    return {left, right, position - static_cast<float>(left)};
}

float float_step(int32_t src_count, int32_t dst_count)
{
    return static_cast<float>(src_count - 1) / static_cast<float>(dst_count - 1);
}

} // namespace

uint32_t resize_2d_array_uint8(const uint8_t *src, int32_t src_width, int32_t src_height, uint8_t *dst,
                               int32_t dst_width, int32_t dst_height)
{
    return resize<8>(src, src_width, src_height, dst, dst_width, dst_height);
}

uint32_t resize_2d_array_uint16(const uint16_t *src, int32_t src_width, int32_t src_height, uint16_t *dst,
                                int32_t dst_width, int32_t dst_height)
{
    return resize<8>(src, src_width, src_height, dst, dst_width, dst_height);
}

uint32_t resize_2d_array_uint32(const uint32_t *src, int32_t src_width, int32_t src_height, uint32_t *dst,
                                int32_t dst_width, int32_t dst_height)
{
    return resize<12>(src, src_width, src_height, dst, dst_width, dst_height);
}

uint32_t resize_2d_array_float(const float *src, uint16_t src_width, int32_t src_height, float *dst, uint16_t dst_width,
                               int32_t dst_height)
{
    if (src_width < 2 || src_height < 2 || dst_width < 2 || dst_height < 2)
        return ISP_INVALID_ARGUMENT;

    const float step_x = float_step(src_width, dst_width);
    const float step_y = float_step(src_height, dst_height);
    for (int32_t row = 0; row < dst_height; ++row) {
        const float_neighbours v = float_neighbours_at(static_cast<float>(row) * step_y, src_height);
        const float *top = src + static_cast<size_t>(v.left) * src_width;
        const float *bottom = src + static_cast<size_t>(v.right) * src_width;
        const float dy = v.right_weight;
        const float top_weight = 1.0f - dy;
        for (int32_t column = 0; column < dst_width; ++column) {
            const float_neighbours h = float_neighbours_at(static_cast<float>(column) * step_x, src_width);
            const float dx = h.right_weight;
            const float left_weight = 1.0f - dx;
            float sum = top[h.left] * left_weight * top_weight + top[h.right] * dx * top_weight;
            sum = left_weight * bottom[h.left] * dy + sum;
            *dst++ = dx * bottom[h.right] * dy + sum;
        }
    }
    return ISP_SUCCESS;
}
