#include <array>
#include <map>
#include <numeric>
#include <string>
#include <utility>

#include <gtest/gtest.h>

#include "container_builder.h"
#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_isp/frame.h"
#include "qz_mkn.h"

namespace {

using test::bytes;

// A camera with a makernote, and the inputs of a frame.
class camera {
  public:
    explicit camera(const bytes &records = {}) : container_(records, 0)
    {
        context = qz_isp_2_7_init(container_.blob(), 1, 1, &cmc_, mkn);
        first_frame_record_ = qz_mkn_record_count(mkn);
    }
    ~camera()
    {
        qz_isp_2_7_deinit(context);
        qz_mkn_destroy(mkn);
    }
    camera(const camera &) = delete;
    camera &operator=(const camera &) = delete;

    const aic_record &run(const isp_input_params &input)
    {
        first_frame_record_ = qz_mkn_record_count(mkn);
        EXPECT_EQ(qz_isp_2_7_run(context, &input, &output), ISP_SUCCESS);
        return *output.record;
    }

    // The makernote records of the last frame as "format:name:count".
    std::string makernote() const
    {
        std::string all;
        for (const qz_mkn_record &record : records())
            all += std::to_string(record.format) + ':' + std::to_string(record.name) + ':' +
                   std::to_string(record.count) + ' ';
        return all;
    }

    std::vector<qz_mkn_record> records() const
    {
        std::vector<qz_mkn_record> all;
        qz_mkn_record record = {};
        for (uint32_t i = first_frame_record_; qz_mkn_get_record(mkn, i, &record); ++i)
            all.push_back(record);
        return all;
    }

    template <typename T>
    std::vector<T> record(uint32_t name) const
    {
        for (const qz_mkn_record &record : records()) {
            if (record.name == name) {
                std::vector<T> values(record.size / sizeof(T));
                std::memcpy(values.data(), record.data, record.size);
                return values;
            }
        }
        return {};
    }

    qz_mkn *mkn = qz_mkn_create();
    isp_context *context = nullptr;
    isp_output_desc output = {};

  private:
    isp_sensor_description sensor_ = {{}, 3264, 2448, 10, 0};
    isp_cmc cmc_ = {nullptr, nullptr, &sensor_, nullptr, nullptr};
    test::container container_;
    uint32_t first_frame_record_ = 0;
};

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

TEST(run, blocks_form_a_chain_with_zero_padding)
{
    camera one;
    const auto *base = reinterpret_cast<const uint8_t *>(&one.run(all_on));
    EXPECT_EQ(one.output.bytes_used, 4928u);
    const std::vector<uint32_t> ids = {1,  2,  3,  4,  5,  6,  8,  7,  9,  10, 37, 11, 12, 13, 14, 15, 16,
                                       17, 18, 19, 20, 21, 22, 23, 29, 31, 32, 33, 35, 34, 24, 25, 26, 27};
    size_t offset = 0;
    for (const uint32_t id : ids) {
        uint32_t header[2];
        std::memcpy(header, base + offset, sizeof header);
        EXPECT_EQ(header[0], id);
        const size_t end = (offset + header[1] + 7) & ~size_t{7};
        for (size_t i = offset + header[1]; i < end; ++i)
            EXPECT_EQ(base[i], 0) << id;
        offset = end;
    }
    EXPECT_EQ(offset, 4928u);
}

TEST(run, defaults_of_an_empty_container)
{
    camera one;
    const aic_record &record = one.run(all_on);
    EXPECT_EQ(record.white_balance.payload.shift, 2u);
    EXPECT_EQ(list(record.defect_pixel.payload.param), (std::vector<uint32_t>{8192, 4096}));
    EXPECT_EQ(list(record.defect_pixel.payload.gain), std::vector<uint32_t>(4, 16384));
    EXPECT_EQ(list(record.long_3.payload.gain), std::vector<uint32_t>(4, 512));
    EXPECT_EQ(list(record.yuv_to_rgb.payload.coeff),
              (std::vector<int32_t>{4096, -4096, 4096, 4096, 4096, 0, 4096, -4096, -4096}));
    EXPECT_EQ(list(record.temporal_noise_reduction.payload.param), (std::vector<uint32_t>{32768, 32, 32}));
    EXPECT_EQ(list(record.rec_3.payload.value), (std::vector<uint16_t>{5461, 8191, 0}));
    EXPECT_EQ(list(record.y_edge_enhancement.payload.param), std::vector<uint16_t>(4, 1000));
    EXPECT_EQ(list(record.fringe_control.payload.field_10_to_11), std::vector<int16_t>(2, -8192));
    EXPECT_EQ(record.block_9.payload.value, 1u);
    EXPECT_EQ(list(record.chroma_nr.payload.field), (std::vector<uint16_t>{0, 0, 100, 100, 100, 50, 50, 50}));
    EXPECT_EQ(record.ctc.payload.shift, 1);
    EXPECT_EQ(list(record.edge_enhancement.payload.param), (std::vector<uint32_t>{8192, 256, 2048}));
    EXPECT_EQ(list(record.macc.payload.coeff[15]), (std::vector<int16_t>{4096, 0, 0, 4096}));
    EXPECT_EQ(record.macc_shift.payload.value, 1);
    EXPECT_EQ(list(record.noise_reduction.payload.param), (std::vector<uint32_t>{14336, 14336, 512, 128, 128}));
    EXPECT_EQ(list(record.rec_16.payload.value)[3], 65024u);
    EXPECT_EQ(record.gamma_0.payload.table[255], 0);

    // Invariants and last values of the long default lists.
    const auto sum = [](const auto &values) {
        return std::accumulate(std::begin(values), std::end(values), int64_t{0},
                               [](int64_t total, uint32_t value) { return total + static_cast<int32_t>(value); });
    };
    const aic_rec_16 &filter = record.rec_16.payload;
    EXPECT_EQ(filter.value[0] + filter.value[1] + filter.value[2], 65536u);
    const auto group = [&](size_t first) {
        return std::accumulate(filter.value + first, filter.value + first + 7, 0u);
    };
    EXPECT_EQ(group(6), 0u);
    EXPECT_EQ(group(13), 0u);
    EXPECT_EQ(sum(record.long_13.payload.param), 32);
    EXPECT_EQ(record.long_12.payload.param[87], 0xffffffffu);
    EXPECT_EQ(record.long_12.payload.param[96], 0u);
    EXPECT_EQ(record.long_6.payload.param[294], 2047u);
    EXPECT_EQ(record.long_7.payload.param[61], 6144u);
    EXPECT_EQ(record.long_5.payload.param[16], 8191u);
}

TEST(run, switched_off_modes_write_their_own_values_and_no_records)
{
    camera one;
    isp_input_params input = {};
    one.run(all_on);
    const aic_record &off = one.run(input);
    EXPECT_EQ(list(off.temporal_noise_reduction.payload.param), (std::vector<uint32_t>{65535, 0, 0}));
    EXPECT_EQ(list(off.y_edge_enhancement.payload.param), std::vector<uint16_t>(4, 0));
    EXPECT_EQ(off.fringe_control.payload.exponent, 0);
    EXPECT_EQ(list(off.fringe_control.payload.field_4_to_7), std::vector<uint16_t>(4, 0));
    EXPECT_EQ(list(off.fringe_control.payload.field_8_to_9), std::vector<uint16_t>(2, 8191));
    EXPECT_EQ(list(off.chroma_nr.payload.field), (std::vector<uint16_t>{0, 0, 8191, 8191, 8191, 8191, 8191, 8191}));
    EXPECT_EQ(list(off.edge_enhancement.payload.param), std::vector<uint32_t>(3, 0));
    EXPECT_EQ(list(off.noise_reduction.payload.param), std::vector<uint32_t>(5, 0));
    EXPECT_EQ(one.makernote(), "6:512:5 6:517:6 6:546:7 5:537:10 4:530:3 4:545:1 4:533:11 4:535:2 3:524:64 2:542:1 "
                               "6:514:5 6:523:6 2:516:2 4:547:145 4:549:295 4:550:62 4:551:6 4:553:14 4:554:97 "
                               "2:540:1 2:540:1 2:540:1 4:534:256 1:543:9 ");

    input.nr_mode = 1; // all noise reduction but Bayer's
    EXPECT_EQ(one.run(input).noise_reduction.payload.param[0], 0u);
    EXPECT_EQ(one.run(input).temporal_noise_reduction.payload.param[0], 32768u);
    EXPECT_EQ(one.makernote().find("6:518"), std::string::npos);
    EXPECT_NE(one.makernote().find("6:520"), std::string::npos);
}

// Inputs of a frame with lens shading.
struct shaded_frame {
    std::array<float, 4> gains = {1.0f, 1.0f, 1.0f, 1.0f};
    isp_lsc_params lsc = {{gains.data(), gains.data(), gains.data(), gains.data()}, 2, 2, 1, {}};
    isp_frame_desc frame = {{{11, 12}, 3264, 2448}, 1, 1, 1, 1};
    isp_input_params input = all_on;

    shaded_frame()
    {
        input.frame = &frame;
        input.lsc = &lsc;
    }
};

TEST(run, makernote_of_a_frame_with_everything_on)
{
    camera one;
    shaded_frame shaded;
    isp_input_params &input = shaded.input;
    input.gamma_257 = 1;
    input.brightness = -1;
    input.contrast = 2;
    input.hue = -3;
    input.saturation = 4;
    input.effects = 0x100;
    input.nr_mode = 0x1fe;
    input.nr_strength = -5;
    input.edge_mode = 0x103;
    input.sharpness = 6;
    one.run(input);
    one.run(input);
    EXPECT_EQ(one.makernote(),
              "6:512:5 6:517:6 6:546:7 5:537:10 6:520:3 4:530:3 4:541:4 5:531:13 4:545:1 4:532:8 4:533:11 4:535:2 "
              "6:519:3 3:524:64 2:542:1 6:518:5 6:514:5 4:521:1 6:523:6 2:516:2 4:547:145 4:549:295 4:550:62 4:551:6 "
              "4:553:14 4:554:97 2:540:1 2:540:1 2:540:1 4:534:257 6:527:6 4:66064:2268 4:528:54 1:543:9 4:544:8 ");
    EXPECT_EQ(one.record<int8_t>(543), (std::vector<int8_t>{-1, 2, -3, 4, 9, -2, -5, 3, 6}));
    EXPECT_EQ(one.record<uint16_t>(544), (std::vector<uint16_t>{11, 12, 3264, 2448, 1, 1, 1, 1}));
    EXPECT_EQ(one.record<int32_t>(531),
              (std::vector<int32_t>{1, 4096, 4096, 4096, 4096, 8191, 8191, -8192, -8192, 0, 0, 0, 0}));
    EXPECT_EQ(one.record<uint32_t>(514).back(), 18u); // the next block's id
    EXPECT_EQ(one.record<uint16_t>(66064), std::vector<uint16_t>(2268, 256));
    for (const qz_mkn_record &record : one.records())
        EXPECT_EQ(record.key, nullptr);

    input.tuning_mode = 2;
    one.run(input);
    EXPECT_EQ(one.makernote().find("66064"), std::string::npos);
    EXPECT_NE(one.makernote().find("4:528:54"), std::string::npos);
}

TEST(run, lens_shading_grows_the_record_and_survives_a_failed_frame)
{
    camera one;
    shaded_frame shaded;
    shaded.input.frame = nullptr;
    const aic_record &record = one.run(shaded.input);
    EXPECT_EQ(one.output.bytes_used, 4928u + 8);
    EXPECT_EQ(one.makernote().find("4:528"), std::string::npos);
    shaded.input.frame = &shaded.frame;
    one.run(shaded.input);
    const aic_lens_shading &block = record.lens_shading.payload;
    const uint32_t size = 8 + 8 * 27 * 21;
    EXPECT_EQ(one.output.bytes_used, 4928 + size);
    EXPECT_EQ(record.lens_shading.size, size);
    EXPECT_EQ(block.enable, 1u);
    EXPECT_EQ(block.columns, 27u);
    EXPECT_EQ(block.rows, 21u);
    EXPECT_EQ(block.format, 8u);
    const auto start = sizeof(void *) == 4 ? static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&record)) : 0u;
    EXPECT_EQ(block.table[0], start + 4976);
    EXPECT_EQ(block.table[3], start + 4976 + 3 * 2 * 567);
    EXPECT_EQ(block.entries[4 * 567 - 1], 256);

    // 422 x 9 entries do not fit, 421 x 9 fill the record; cells of 16 come from a small sensor.
    isp_sensor_description &sensor = *one.context->cmc->sensor_description;
    sensor.width = 10;
    shaded.frame.size = {{}, 13442, 256};
    one.run(shaded.input);
    EXPECT_EQ(block.enable, 0u);
    EXPECT_EQ(one.output.bytes_used, 4928 + size);
    EXPECT_EQ(block.entries[4 * 567], 0);
    shaded.frame.size.width = 13440;
    one.run(shaded.input);
    EXPECT_EQ(block.enable, 1u);
    EXPECT_EQ(one.output.bytes_used, 4928u + 8 + 8 * 3789);
    EXPECT_EQ(block.entries[4 * 3789 - 1], 256);

    // Of an unusable sensor nothing is known: cells of 64 fit again.
    sensor.bit_depth = 32;
    one.run(shaded.input);
    EXPECT_EQ(block.enable, 1u);
    EXPECT_EQ(block.columns, 106u);

    shaded.lsc.enable = 0;
    one.run(shaded.input);
    EXPECT_EQ(one.output.bytes_used, 4928u);
}

TEST(run, current_gain_needs_both_gains_and_wraps)
{
    // One row a gain, so that the interpolated value tells the gain.
    camera one(test::short_rows(335, 2, {0, 0, 65535, 65535}));
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
    EXPECT_EQ(gain_at(16.0f, 16.25f), 1024);           // 66560 modulo 65536
    EXPECT_EQ(gain_at(4096.0f, 0x1.000002p13f), 1024); // 2^33 + 1024
    EXPECT_EQ(gain_at(std::numeric_limits<float>::quiet_NaN(), 1.0f), 256);
}

TEST(run, saturation_factor_reaches_chroma_tone_control)
{
    bytes payload;
    for (const uint16_t value : std::initializer_list<uint16_t>{1000, 0, 0, 0, 0, 0, 5, 1, 2, 3, 4})
        test::append(payload, value);
    camera one(test::record(332, payload));
    isp_colour_params colour = {};
    isp_scene_params scene = {};
    isp_input_params input = {};
    EXPECT_EQ(one.run(input).ctc.payload.mantissa[0], 1000);
    EXPECT_EQ(one.run(input).ctc.payload.value[3], 4);
    input.saturation = 127;
    EXPECT_EQ(one.run(input).ctc.payload.mantissa[0], 5000);
    input.effects = 0x100;
    EXPECT_EQ(one.run(input).ctc.payload.mantissa[0], 7500);
    input.colour = &colour;
    colour.saturation = 0.5f;
    EXPECT_EQ(one.run(input).ctc.payload.mantissa[0], 3750);
    input.scene = &scene;
    scene.saturation_decrement = 0.5f;
    EXPECT_EQ(one.run(input).ctc.payload.mantissa[0], 3000);
    scene.saturation_decrement = 9.0f;
    EXPECT_EQ(one.run(input).ctc.payload.mantissa[0], 0);
    scene.saturation_decrement = -1.0f;
    EXPECT_EQ(one.run(input).ctc.payload.mantissa[0], 3750);
}

TEST(run, white_balance_gains_reach_three_blocks_in_channel_order)
{
    camera one;
    isp_colour_params colour = {};
    const isp_scene_params scene = {};
    isp_input_params input = {};
    input.colour = &colour;
    input.scene = &scene;
    std::copy_n(std::array{1.0f, 2.0f, 3.9f, 1.5f}.begin(), 4, colour.white_balance_gain);
    const aic_record &record = one.run(input);
    const std::vector<uint32_t> gains = {16384, 32768, 63897, 24576};
    EXPECT_EQ(record.white_balance.payload.shift, 2u);
    EXPECT_EQ(list(record.white_balance.payload.gain), gains);
    EXPECT_EQ(list(record.defect_pixel.payload.gain), gains);
    EXPECT_EQ(list(record.long_3.payload.gain), (std::vector<uint32_t>{512, 1024, 1996, 768}));

    colour.white_balance_gain[2] = 300.0f; // 9 integer bits: shifted left
    EXPECT_EQ(one.run(input).long_3.payload.gain[2], 38400u << 2);
    EXPECT_EQ(record.white_balance.payload.shift, 9u);
    input.colour = nullptr;
    EXPECT_EQ(one.run(input).white_balance.payload.shift, 2u);
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
    sensor.bit_depth = 8;
    isp_cmc nothing = {};
    for (isp_cmc *missing : {&nothing, static_cast<isp_cmc *>(nullptr)}) {
        isp_cmc *const known = std::exchange(one.context->cmc, missing);
        EXPECT_EQ(one.run(input).black_level.payload.level[3], 0u);
        one.context->cmc = known;
    }
}

TEST(run, tabled_blocks_interpolate_and_keep_what_rowless_records_leave)
{
    const auto rows = [](size_t values, int32_t low, int32_t high) {
        std::vector<int32_t> table(2 * (values + 1), low);
        table[0] = 0;
        std::fill(table.begin() + static_cast<ptrdiff_t>(values) + 1, table.end(), high);
        table[values + 1] = 512;
        return table;
    };
    struct expectation {
        uint16_t id;
        size_t values;
    };
    bytes filled;
    for (const auto &[id, values] : {expectation{771, 3}, {774, 295}, {775, 62}, {779, 14}, {780, 97}, {781, 6}}) {
        const bytes one = test::long_rows(id, 2, rows(values, 0, -300));
        filled.insert(filled.end(), one.begin(), one.end());
    }
    camera one(filled);
    const aic_record &record = one.run(all_on); // halfway between the rows
    EXPECT_EQ(list(record.long_3.payload.param), std::vector<uint32_t>(3, 0xffffff6a));
    EXPECT_EQ(list(record.long_6.payload.param), std::vector<uint32_t>(295, 0xffffff6a));
    EXPECT_EQ(list(record.long_7.payload.param), std::vector<uint32_t>(62, 0xffffff6a));
    EXPECT_EQ(list(record.long_11.payload.param), std::vector<uint32_t>(14, 0xffffff6a));
    EXPECT_EQ(list(record.long_12.payload.param), std::vector<uint32_t>(97, 0xffffff6a));
    EXPECT_EQ(list(record.long_13.payload.param), std::vector<uint32_t>(6, 0xffffff6a));

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
    row[129] = 1; // scale of the first curve
    row[130] = 3; // of the second
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
    EXPECT_EQ(block.curve_b[0], 3u);
    EXPECT_EQ(block.param[0], 77u);
    EXPECT_EQ(block.param[16], 88u);
}

TEST(run, copied_values_and_the_frame_counter)
{
    bytes rec_3;
    for (const uint16_t value : std::initializer_list<uint16_t>{1, 2, 3})
        test::append(rec_3, value);
    camera one(test::join(
        {test::record(323, rec_3), test::record(333, {10, 0, 11, 0}, 101), test::record(336, {20, 0, 21, 0})}));
    isp_input_params input = {};
    input.block9_control = 2;
    one.run(input);
    const aic_record &record = one.run(input);
    EXPECT_EQ(list(record.rec_3.payload.value), (std::vector<uint16_t>{1, 2, 3}));
    EXPECT_EQ(record.rec_13_a.payload.value, 11);
    EXPECT_EQ(record.rec_13_b.payload.value, 10);
    EXPECT_EQ(one.record<uint16_t>(535), (std::vector<uint16_t>{10, 11}));
    EXPECT_EQ(record.rec_16.payload.value[3], 21u);
    EXPECT_EQ(record.rec_16.payload.value[4], 20u);
    EXPECT_EQ(record.rec_16.payload.value[5], 21u);
    EXPECT_EQ(record.block_9.payload.value, 3u);
    EXPECT_EQ(record.frame_counter.payload.value, 1u);
    EXPECT_EQ(one.context->frame_counter, 2u);
}

TEST(run, gamma_tables_of_both_lengths_and_equal_channels)
{
    camera one;
    const std::array<float, 3> curve = {0.0f, 0.7f, 1.0f};
    const std::array<float, 3> other = {0.0f, 0.3f, 1.0f};
    isp_gamma_params gamma = {{curve.data(), other.data(), curve.data()}, 3};
    isp_input_params input = {};
    input.gamma = &gamma;
    input.gamma_257 = 1;
    const aic_record &record = one.run(input);
    EXPECT_EQ(record.gamma_0.payload.has_257_entries, 1u);
    EXPECT_EQ(record.gamma_0.payload.table[256], 4095);
    input.gamma_257 = 0;
    input.brightness = 40;
    one.run(input);
    EXPECT_EQ(record.gamma_0.payload.table[255], 4095);
    EXPECT_EQ(record.gamma_0.payload.table[256], 4095); // from the frame before
    EXPECT_EQ(list(record.gamma_0.payload.table), list(record.gamma_2.payload.table));
    EXPECT_LT(record.gamma_1.payload.table[128], record.gamma_0.payload.table[128]);
    EXPECT_EQ(one.record<uint8_t>(540), std::vector<uint8_t>{2});
    input.brightness = 0;
    const uint16_t plain = one.run(input).gamma_0.payload.table[16];
    input.contrast = 40;
    EXPECT_LT(one.run(input).gamma_0.payload.table[16], plain);
}

} // namespace
