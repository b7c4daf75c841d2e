#include <array>
#include <utility>

#include <gtest/gtest.h>

#include "tests/camera.h"

namespace {

using test::bytes;
using test::camera;

template <typename T, size_t n>
std::vector<T> list(const T (&values)[n])
{
    return {values, values + n};
}

constexpr isp_input_params all_on = [] {
    isp_input_params input = {};
    input.nr_mode = 2;
    input.edge_mode = 1;
    return input;
}();

TEST(run, arguments_and_missing_inputs)
{
    camera one;
    isp_output_desc output = {nullptr, 77};
    const isp_input_params input = {};
    EXPECT_EQ(qz_isp_2_7_run(nullptr, &input, &output), ISP_INVALID_ARGUMENT);
    EXPECT_EQ(qz_isp_2_7_run(one.context, &input, nullptr), ISP_INVALID_ARGUMENT);
    EXPECT_EQ(output.record, nullptr);
    EXPECT_EQ(qz_isp_2_7_run(one.context, nullptr, &output), ISP_SUCCESS);
    EXPECT_EQ(output.record, one.context->aic_output);
    EXPECT_EQ(output.bytes_used, 77u);
    isp_parse_deinit(one.context);
    EXPECT_EQ(qz_isp_2_7_run(one.context, &input, &output), ISP_SUCCESS);
    EXPECT_EQ(one.context->frame_counter, 0u);
    EXPECT_EQ(output.record->white_balance.id, 0u);
}

TEST(run, every_block_has_its_header)
{
    camera one;
    isp_lsc_params lsc = {};
    lsc.enable = 1;
    isp_input_params input = {};
    input.lsc = &lsc;
    const aic_record &record = one.run(input);
#define QZ_EXPECT_HEADER(name, number, bytes, ...) EXPECT_EQ(record.name.id, uint32_t{number}) << #name;
    AIC_BLOCKS(QZ_EXPECT_HEADER)
#undef QZ_EXPECT_HEADER
}

TEST(run, lens_shading_grows_the_record_and_survives_a_failed_frame)
{
    camera one;
    const std::array<float, 4> gains = {1.0f, 1.0f, 1.0f, 1.0f};
    isp_lsc_params lsc = {{gains.data(), gains.data(), gains.data(), gains.data()}, 2, 2, 1, {}};
    isp_frame_desc frame = {{{}, 3264, 2448}, 3, 2, 5, 4};
    isp_input_params input = {};
    input.lsc = &lsc;
    const aic_record &record = one.run(input);
    EXPECT_EQ(one.output.bytes_used, AIC_FIXED_SIZE + 8);
    EXPECT_EQ(one.makernote().find("4:528"), std::string::npos);
    input.frame = &frame;
    one.run(input);
    const aic_lens_shading &block = record.lens_shading.payload;
    const uint32_t size = 8 + 8 * 27 * 21;
    EXPECT_EQ(one.output.bytes_used, AIC_FIXED_SIZE + size);
    EXPECT_EQ(record.lens_shading.size, size);
    EXPECT_EQ(block.enable, 1u);
    EXPECT_EQ(block.columns, 27u);
    EXPECT_EQ(block.rows, 21u);
    EXPECT_EQ(block.format, 8u);
    const auto start = sizeof(void *) == 4 ? static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&record)) : 0u;
    EXPECT_EQ(block.table[0], start + AIC_FIXED_SIZE + AIC_LENS_SHADING_TABLES_OFFSET);
    EXPECT_EQ(block.table[3], start + AIC_FIXED_SIZE + AIC_LENS_SHADING_TABLES_OFFSET + 3 * 2 * 567);
    EXPECT_EQ(block.entries[4 * 567 - 1], 256);

    // 422 x 9 entries do not fit, 421 x 9 fill the record; cells of 16 come from a small sensor.
    isp_sensor_description &sensor = *one.context->cmc->sensor_description;
    sensor.width = 10;
    frame.size = {{}, 13442, 256};
    one.run(input);
    EXPECT_EQ(block.enable, 0u);
    EXPECT_EQ(one.output.bytes_used, AIC_FIXED_SIZE + size);
    EXPECT_EQ(block.entries[4 * 567], 0);
    frame.size.width = 13440;
    one.run(input);
    EXPECT_EQ(block.enable, 1u);
    EXPECT_EQ(one.output.bytes_used, AIC_FIXED_SIZE + 8 + 8 * 3789);
    EXPECT_EQ(block.entries[4 * 3789 - 1], 256);

    // Of an unusable sensor nothing is known: cells of 64 fit again.
    sensor.bit_depth = 32;
    one.run(input);
    EXPECT_EQ(block.enable, 1u);
    EXPECT_EQ(block.columns, 106u);

    lsc.enable = 0;
    one.run(input);
    EXPECT_EQ(one.output.bytes_used, AIC_FIXED_SIZE);
}

TEST(run, current_gain_needs_both_gains_and_wraps)
{
    // One row a gain, so that the interpolated value tells the gain.
    camera one(test::shorts(335, {2, 0, 0, 65535, 65535}));
    isp_input_params input = all_on;
    const auto gain_at = [&](float analog, float digital) {
        const isp_exposure exposure = {0, analog, digital};
        input.exposure = &exposure;
        return one.run(input).xnr.payload.param;
    };
    EXPECT_EQ(one.run(input).xnr.payload.param, 256);
    EXPECT_EQ(gain_at(2.0f, 3.0f), 1536);
    EXPECT_EQ(gain_at(0.5f, 8.0f), 256);
    EXPECT_EQ(gain_at(8.0f, 0.99f), 256);
    EXPECT_EQ(gain_at(1.999f, 1.0f), 511);
    EXPECT_EQ(gain_at(128.0f, 1.0f), 32768);
    EXPECT_EQ(gain_at(16.0f, 16.25f), 1024);           // 66560 modulo 65536
    EXPECT_EQ(gain_at(4096.0f, 0x1.000002p13f), 1024); // 2^33 + 1024
    EXPECT_EQ(gain_at(std::numeric_limits<float>::quiet_NaN(), 1.0f), 256);
}

TEST(run, black_levels_need_a_sensor_of_1_to_31_bits)
{
    camera one;
    isp_colour_params colour = {};
    std::copy_n(std::array{1.0f, 2.0f, 3.0f, 4.0f}.begin(), 4, colour.black_level);
    isp_input_params input = {};
    input.colour = &colour;
    isp_sensor_description &sensor = *one.context->cmc->sensor_description;
    sensor.bit_depth = 8;
    EXPECT_EQ(list(one.run(input).black_level.payload.level), (std::vector<uint32_t>{257, 514, 771, 1028}));
    for (const uint16_t depth : std::initializer_list<uint16_t>{0, 32, 40}) {
        sensor.bit_depth = depth;
        EXPECT_EQ(one.run(input).black_level.payload.level[3], 0u) << depth;
    }
    sensor.bit_depth = 31;
    colour.black_level[3] = 0x1p30f;
    EXPECT_EQ(one.run(input).black_level.payload.level[3], 32768u);
    sensor.bit_depth = 8;
    isp_cmc nothing = {};
    for (isp_cmc *missing : {&nothing, static_cast<isp_cmc *>(nullptr)}) {
        isp_cmc *const known = std::exchange(one.context->cmc, missing);
        EXPECT_EQ(one.run(input).black_level.payload.level[3], 0u);
        one.context->cmc = known;
    }
}

TEST(run, records_without_rows_leave_some_blocks_their_defaults)
{
    camera rowless(test::join({test::long_rows(771, 0, {}), test::long_rows(773, 0, {}), test::long_rows(774, 0, {}),
                               test::long_rows(775, -1, {})}));
    const aic_record &kept = rowless.run(all_on);
    EXPECT_EQ(list(kept.long_3.payload.param), std::vector<uint32_t>(3, 0));
    EXPECT_EQ(list(kept.long_7.payload.param), std::vector<uint32_t>(62, 0));
    EXPECT_EQ(kept.long_6.payload.param[3], 26u);
    EXPECT_EQ(kept.long_5.payload.param[0], 4095u);
}

TEST(run, long_5_scales_its_curves_by_the_first_rows_factors)
{
    std::vector<int32_t> row(148);
    row[0] = 256;
    row[1] = -1;      // 0
    row[2] = 1023;    // 1 after / 512
    row[3] = 4193791; // the largest that is divided
    row[4] = 4193792; // 8191
    row[65] = 512;
    row[66] = 1;
    row[129] = 1;       // scale of the first curve
    row[130] = 0x10003; // of the second
    row[131] = 77;
    row[147] = 88;
    std::vector<int32_t> other = row;
    other[0] = 1024;
    other[129] = other[130] = 9;
    std::vector<int32_t> table = other;
    std::copy(row.begin(), row.end(), table.begin());
    table.insert(table.end(), other.begin(), other.end());
    camera one(test::long_rows(1541, 2, table));
    isp_input_params input = {};
    const isp_exposure exposure = {0, 4.0f, 1.0f};
    input.exposure = &exposure; // the second row's values, the first row's scales
    const aic_long_5 &block = one.run(input).long_5.payload;
    EXPECT_EQ(list(block.curve_a)[0], 0u);
    EXPECT_EQ(block.curve_a[1], 1u);
    EXPECT_EQ(block.curve_a[2], 8190u);
    EXPECT_EQ(block.curve_a[3], 8191u);
    EXPECT_EQ(block.curve_b[0], 8191u);
    EXPECT_EQ(block.curve_b[1], 128u);
    EXPECT_EQ(block.param[0], 77u);
    EXPECT_EQ(block.param[16], 88u);
}

} // namespace
