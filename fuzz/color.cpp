// The colour and lens shading functions with arguments that a frame never passes: any number of matrices, tables of any
// length, every bit depth and format. The first byte chooses the function.
#include "qz_isp/color.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "fuzz/input.h"
#include "qz_isp/noise_detail.h"

namespace {

using fuzz::exact;
using fuzz::expect;
using fuzz::input;

using matrix_3x3 = std::array<float, 9>;

constexpr uint16_t most_matrices = 20;
constexpr uint16_t most_entries = 600;

void matrices(input &in)
{
    const auto a = in.take<matrix_3x3>();
    const auto b = in.take<matrix_3x3>();
    const exact<float> product(9);
    MulMtx3x3(product.data(), a.data(), b.data());
    const exact<int32_t> coefficients(9);
    uint32_t bits = 0;
    set_yuv_to_rgb(a.data(), coefficients.data(), &bits);
    expect(bits <= 13, "a colour matrix has at most 13 fractional bits");
    set_yuv_to_rgb(in.flag() ? nullptr : a.data(), in.flag() ? nullptr : coefficients.data(),
                   in.flag() ? nullptr : &bits);
}

void fixed_matrix(input &in)
{
    auto matrix = in.take<cc_fixed_matrix>();
    if (in.flag())
        matrix.shift &= 7;
    const exact<int32_t> coefficients(9);
    uint32_t bits = 0;
    set_cc_reg(&matrix, &bits, coefficients.data());
    expect(matrix.shift <= 6 ? bits == 8 : coefficients.untouched(), "shifts above 6 are refused");
}

void effects(input &in)
{
    constexpr size_t distance = 36;
    const uint16_t count = in.size(most_matrices);
    const auto flags = in.take<uint32_t>();
    const exact<float> entries(count == 0 ? 0 : (count - size_t{1}) * distance + 9);
    fuzz::fill(entries.elements(), in.rest());
    apply_color_effects_to_ccms(entries.data(), count, flags);
}

void manual_controls(input &in)
{
    const uint16_t count = in.size(most_matrices);
    const auto disabled = in.take<uint32_t>() % 4;
    const auto saturation = in.take<int32_t>();
    const auto factor = in.take<float>();
    const auto hue = in.take<int8_t>();
    const exact<float> entries(size_t{9} * count);
    fuzz::fill(entries.elements(), in.rest());
    apply_manual_saturation_to_ccms(entries.data(), count, disabled / 2, saturation, factor);
    apply_manual_hue_to_ccms(entries.data(), count, disabled % 2, hue);
    const exact<float> sectors(64);
    fuzz::fill(sectors.elements(), in.rest());
    compute_hue(sectors.data(), hue);
}

void gamma_table(input &in)
{
    isp_gamma_params gamma = {};
    gamma.point_count = in.size(most_entries);
    const bool straight = in.flag();
    const bool missing = in.flag();
    const auto flags = in.take<uint32_t>();
    const auto threshold = in.take<float>();
    const uint16_t length = in.size(most_entries);
    const uint32_t ignored = in.take<uint16_t>();
    const exact<float> curve(gamma.point_count);
    fuzz::fill(curve.elements(), in.rest());
    const exact<uint16_t> table(length);
    compute_gamma(missing ? nullptr : &gamma, straight ? nullptr : curve.data(), flags, table.data(),
                  ignored << 16 | length, threshold, nullptr);
    invert_gamma(table.data(), length);
    const exact<float> floats(length);
    fuzz::fill(floats.elements(), in.rest());
    invert_gamma_f(floats.data(), length);
}

void brightness_and_contrast(input &in)
{
    const auto brightness = in.take<int8_t>();
    const auto contrast = in.take<int8_t>();
    const bool in_place = in.flag();
    const bool negative = in.flag();
    const uint16_t length = in.size(most_entries);
    const int32_t n = negative ? -int32_t{length} : int32_t{length};
    const exact<uint16_t> from(length);
    fuzz::fill(from.elements(), in.rest());
    const exact<uint16_t> to(length);
    compute_brightness_contrast(brightness, contrast, from.data(), in_place ? from.data() : to.data(), n);
    const exact<float> table(length);
    fuzz::fill(table.elements(), in.rest());
    compute_brightness_contrast_f(brightness, contrast, table.data(), n);
}

void levels_and_gains(input &in)
{
    const auto values = in.take<std::array<float, 4>>();
    const auto bits = in.take<uint16_t>();
    const exact<float> gains(4);
    compute_isp_lsc_saturation_compensation(values.data(), bits, gains.data());
    uint32_t out[5];
    expect(compute_isp_black_level_compensation(values.data(), bits, &out[0], &out[1], &out[2], &out[3]) == 0,
           "black levels give 0");
    compute_white_balance(values.data(), &out[0], &out[1], &out[2], &out[3], &out[4]);
    const bool in_range = std::ranges::all_of(values, [](float gain) { return gain < 65536.0f; });
    expect(out[0] <= (in_range ? 16 : 32), "the shift of white balance is the bits of the largest integer part");
    float factor = values[0];
    compute_saturation_factor(static_cast<int8_t>(bits), &factor);
}

void lens_shading(input &in)
{
    constexpr size_t most_table_entries = size_t{4} * 65535;
    isp_lsc_params shading = {};
    shading.width = in.size(40);
    shading.height = in.size(40);
    const uint16_t missing = in.size(40); // bits: grids, the input, the frame, the sensor, the factors
    const auto sensor = in.take<isp_sensor_description>();
    auto frame = in.take<isp_frame_desc>();
    if (!in.flag()) { // most of the rest is refused, or takes long
        frame.size.width %= 1024;
        frame.size.height %= 1024;
    }
    const auto format = in.take<uint32_t>() % 12;
    const auto factors = in.take<std::array<float, 4>>();
    const exact<float> grid(size_t{shading.width} * shading.height);
    fuzz::fill(grid.elements(), in.rest());
    for (const float *&each : shading.grid)
        each = (missing & 1) != 0 && &each == &shading.grid[3] ? nullptr : grid.data();

    const exact<uint16_t> tables(most_table_entries);
    const auto first = reinterpret_cast<uintptr_t>(tables.data());
    auto next_free = first;
    uint8_t enable = 1;
    uint32_t scaled[2] = {};
    uint32_t columns = 0;
    uint32_t rows = 0;
    uint32_t addresses[4] = {};
    float cell_size = 0;
    const uint32_t status =
        compute_lsc((missing & 8) != 0 ? nullptr : &sensor, (missing & 2) != 0 ? nullptr : &shading,
                    (missing & 4) != 0 ? nullptr : &frame, &enable, &scaled[0], &scaled[1], &columns, &rows, &format,
                    addresses, &next_free, (missing & 16) != 0 ? nullptr : factors.data(), &cell_size);
    if (status == 0)
        expect(next_free - first == size_t{columns} * rows * 8 && columns * rows <= 65535,
               "the tables are rows x columns entries a channel");
    else
        expect(status == 32 && enable == 0 && next_free == first && columns == 0 && cell_size == 0,
               "a refused grid only clears the enable flag");
}

constexpr void (*functions[])(input &) = {matrices,         fixed_matrix, effects,
                                          manual_controls,  gamma_table,  brightness_and_contrast,
                                          levels_and_gains, lens_shading};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    input in(bytes, size);
    functions[in.take<uint8_t>() % std::size(functions)](in);
    return 0;
}
