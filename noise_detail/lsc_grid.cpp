#include "noise_detail/lsc_grid.h"

#include <algorithm>
#include <cmath>
#include <iterator>

#include "util/float_to_int.h"

namespace {

constexpr uint32_t default_pixel_count = 3264 * 2448;
constexpr uint32_t max_entries = 65535;

float cell_size(const isp_sensor_description *sensor)
{
    const uint32_t pixels = sensor != nullptr ? uint32_t{sensor->width} * sensor->height : default_pixel_count;
    if (pixels >= 4000000)
        return 64.0f;
    return pixels >= 1000000 ? 32.0f : 16.0f;
}

bool has_gains(const isp_lsc_params &input)
{
    const auto missing = [](const float *gains) { return gains == nullptr; };
    return input.width != 0 && input.height != 0 && std::none_of(std::begin(input.grid), std::end(input.grid), missing);
}

bool has_size(const isp_frame_desc &frame)
{
    return frame.size.width != 0 && frame.size.height != 0 && frame.horizontal_denominator != 0 &&
           frame.vertical_denominator != 0;
}

uint32_t scaled(uint32_t length, uint32_t numerator, uint32_t denominator)
{
    return (numerator * length / denominator) & 0xFFFF;
}

// Grid points along one side of the frame: every cell has one at both its ends.
uint32_t grid_points(uint32_t frame_length, float cell)
{
    return qz::truncate_to_u32(std::ceil(static_cast<float>(frame_length) * 0.5f / cell) + 1.0f);
}

} // namespace

bool qz::derive_lsc_grid(const isp_sensor_description *sensor, const isp_lsc_params *shading_input,
                         const isp_frame_desc *frame, lsc_grid *grid)
{
    if (shading_input == nullptr || frame == nullptr || !has_gains(*shading_input) || !has_size(*frame))
        return false;

    const float cell = cell_size(sensor);
    const lsc_grid derived = {
        .cell = cell,
        .columns = grid_points(frame->size.width, cell),
        .rows = grid_points(frame->size.height, cell),
        .scaled_width = scaled(frame->size.width, frame->horizontal_numerator, frame->horizontal_denominator),
        .scaled_height = scaled(frame->size.height, frame->vertical_numerator, frame->vertical_denominator),
    };
    if (derived.scaled_width == 0 || derived.scaled_height == 0 || derived.entries() > max_entries)
        return false;
    *grid = derived;
    return true;
}
