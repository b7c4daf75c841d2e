#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#include "qz_isp/error.h"
#include "qz_isp/table_resize.h"
#include "util/float_to_int.h"
#include "util/resample/table_axis.h"
#include "util/simd/dispatch.h"

namespace {

using axis = qz::fixed_axis<10>;

constexpr uint32_t half = axis::one / 2;

// The low 16 bits of the value in units of 1/256.
uint32_t fixed_point(float value)
{
    return qz::truncate_to_low_16(value * 256.0f);
}

uint16_t scaled(uint32_t value, uint32_t scale)
{
    return static_cast<uint16_t>(scale != 0 ? (value * scale + half) >> 10 : value);
}

// 3.81469e-6, on purpose a little less than 2^-18 = 1/256 of 1/1024.
constexpr float per_mixed_unit = std::bit_cast<float>(0x367FFFE0u);
constexpr float per_unit = 1.0f / 256.0f;

uint32_t interpolate(const uint16_t *src, const qz::fixed_neighbours &n)
{
    const uint32_t left = src[n.left];
    const uint32_t right = src[n.left + 1];
    return (left * n.left_weight + right * n.right_weight + half) >> 10;
}

// Fills dst with output_at(neighbours). The last output is the last source point, wherever the truncated step leads.
template <typename OutputAt>
void fill(float *dst, int32_t src_count, int32_t dst_count, OutputAt output_at)
{
    const axis along(src_count, dst_count);
    const auto last = static_cast<uint32_t>(dst_count - 1);
    for (uint32_t i = 0; i < last; ++i)
        dst[i] = output_at(axis::at(i * along.step));
    dst[last] = output_at({static_cast<uint32_t>(src_count - 2), 0, axis::one});
}

constexpr uint32_t block = 512; // outputs at a time

QZ_ALWAYS_INLINE void blend(const float *left, const float *right, uint32_t position, uint32_t step, uint32_t scale,
                            uint32_t count, uint16_t *__restrict dst)
{
    for (uint32_t i = 0; i < count; ++i, position += step) {
        const uint32_t right_weight = position & (axis::one - 1);
        const uint32_t sum = fixed_point(left[i]) * (axis::one - right_weight) + fixed_point(right[i]) * right_weight;
        dst[i] = scaled((sum + half) >> 10, scale);
    }
}

// Here a position on a source point takes that point as the left neighbour. Only the last source point has none behind
// it, and that position is not asked for.
void resample(const float *src, uint32_t first_position, uint32_t step, uint32_t scale, uint32_t count, uint16_t *dst)
{
    std::array<float, block> left, right;
    uint32_t position = first_position;
    for (uint32_t i = 0; i < count; ++i, position += step) {
        left[i] = src[position >> 10];
        right[i] = src[(position >> 10) + 1];
    }
    qz::run_loop<blend>(left.data(), right.data(), first_position, step, scale, count, dst);
}

} // namespace

uint32_t isp_resize_1d_array_uint16(const float *src, int32_t src_count, uint32_t scale, uint16_t *dst,
                                    int32_t dst_count)
{
    if (src == nullptr || dst == nullptr || !axis::accepts(src_count, dst_count))
        return ISP_INVALID_ARGUMENT;

    const uint32_t step = axis(src_count, dst_count).step;
    const auto last = static_cast<uint32_t>(dst_count - 1);
    for (uint32_t first = 0; first < last; first += block)
        resample(src, first * step, step, scale, std::min(block, last - first), dst + first);
    dst[last] = scaled(fixed_point(src[src_count - 1]), scale);
    return ISP_SUCCESS;
}

uint32_t resize_and_mix_1d_array_uint16(const uint16_t *src_a, int32_t src_count, const uint16_t *src_b, int32_t mix,
                                        uint32_t gain, float *dst, int32_t dst_count)
{
    if (src_a == nullptr || dst == nullptr || !axis::accepts(src_count, dst_count))
        return ISP_INVALID_ARGUMENT;

    if (src_b != nullptr && mix >= 1) {
        const auto weight_b = static_cast<uint32_t>(std::min(mix, 1024));
        const uint32_t weight_a = 1024 - weight_b;
        const uint64_t factor = gain != 0 ? gain : 1024;
        fill(dst, src_count, dst_count, [=](const qz::fixed_neighbours &n) {
            const uint64_t mixed = interpolate(src_a, n) * weight_a + interpolate(src_b, n) * weight_b;
            return static_cast<float>(static_cast<int64_t>(mixed * factor / 1024)) * per_mixed_unit;
        });
    } else if (gain != 0) {
        fill(dst, src_count, dst_count, [=](const qz::fixed_neighbours &n) {
            return static_cast<float>(interpolate(src_a, n) * gain) * per_mixed_unit;
        });
    } else {
        fill(dst, src_count, dst_count,
             [=](const qz::fixed_neighbours &n) { return static_cast<float>(interpolate(src_a, n)) * per_unit; });
    }
    return ISP_SUCCESS;
}
