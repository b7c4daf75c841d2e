#include "util/resample/extended_buffer.h"

#include <algorithm>

#include "qz_isp/bicubic.h"

namespace qz {
namespace {

enum extrapolation : uint32_t { top, bottom, left, right, top_left, top_right, bottom_left, bottom_right };

float beyond(const float *sample, ptrdiff_t inwards)
{
    const float near = sample[inwards];
    return (near + near) - sample[2 * inwards];
}

float corner(const float *sample, ptrdiff_t inwards_across, ptrdiff_t inwards_down)
{
    const float across = sample[inwards_across];
    return (((across + across) + beyond(sample, inwards_down)) - sample[2 * inwards_across]) * 0.5f;
}

float extrapolated(const float *sample, ptrdiff_t stride, uint32_t mode)
{
    switch (mode) {
    case top: return beyond(sample, stride);
    case bottom: return beyond(sample, -stride);
    case left: return beyond(sample, 1);
    case right: return beyond(sample, -1);
    case top_left: return corner(sample, 1, stride);
    case top_right: return corner(sample, -1, stride);
    case bottom_left: return corner(sample, 1, -stride);
    case bottom_right: return corner(sample, -1, -stride);
    default: return 0.0f;
    }
}

void extrapolate_row(float *row, size_t count, ptrdiff_t inwards)
{
    for (size_t i = 0; i < count; ++i)
        row[i] = beyond(row + i, inwards);
}

// Later samples are extrapolated from earlier ones.
void extrapolate_corners(float *buffer, ptrdiff_t width, ptrdiff_t height)
{
    const ptrdiff_t stride = width + ptrdiff_t{extended_border};
    const auto put = [=](ptrdiff_t row, ptrdiff_t column, extrapolation mode) {
        float *sample = buffer + row * stride + column;
        *sample = extrapolated(sample, stride, mode);
    };
    for (const ptrdiff_t row : {height + 1, height + 2})
        put(row, 0, bottom_left);
    for (const ptrdiff_t row : {height + 1, height + 2})
        for (const ptrdiff_t column : {width + 1, width + 2})
            put(row, column, bottom_right);
}

} // namespace

template <typename Sample>
void fill_extended(const Sample *src, float *buffer, uint32_t width, uint32_t height)
{
    const size_t stride = extended_stride(width);
    // A plane one sample wide or high is extrapolated from border samples that are not there yet: those count as 0.
    if (width <= 1 || height <= 1)
        std::fill_n(buffer, stride * (size_t{height} + extended_border), 0.0f);
    if (width == 0 || height == 0)
        return;

    for (size_t r = 0; r < height; ++r) {
        float *row = buffer + (r + 1) * stride;
        const Sample *from = src + r * width;
        std::copy_n(from, width, row + 1);
        row[0] = beyond(row, 1);
        row[width + 1] = beyond(row + width + 1, -1);
        row[width + 2] = beyond(row + width + 2, -1);
    }

    const auto down = static_cast<ptrdiff_t>(stride);
    extrapolate_row(buffer + 1, width, down);
    buffer[0] = extrapolated(buffer, down, top_left);
    for (const size_t column : {size_t{width} + 1, size_t{width} + 2})
        buffer[column] = extrapolated(buffer + column, down, top_right);

    const size_t below_last = (size_t{height} + 1) * stride;
    float *below = buffer + below_last;
    extrapolate_row(below + 1, width, -down);
    extrapolate_row(below + stride + 1, width, -down);
    extrapolate_corners(buffer, static_cast<ptrdiff_t>(width), static_cast<ptrdiff_t>(height));
}

template void fill_extended(const uint8_t *, float *, uint32_t, uint32_t);
template void fill_extended(const uint16_t *, float *, uint32_t, uint32_t);
template void fill_extended(const float *, float *, uint32_t, uint32_t);

} // namespace qz

void interpolate_gain_value(float *sample, uint32_t stride, uint32_t mode)
{
    *sample = qz::extrapolated(sample, static_cast<uint16_t>(stride), mode);
}

void create_extrapolated_buffer_for_bicubic_u16(const uint16_t *src, float *buffer, uint16_t width, uint16_t height)
{
    qz::fill_extended(src, buffer, width, height);
}
