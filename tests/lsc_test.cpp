#include <cmath>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/noise_detail.h"
#include "tests/allocation_faults.h"
#include "tests/guarded.h"

namespace {

constexpr size_t entries = 336; // 21 x 16, for a 640 x 480 frame on a VGA sensor

// Inputs and outputs of a call. Channel c has a grid of gains of c + 1.
struct scene {
    isp_sensor_description sensor = {{}, 640, 480, 10, 0};
    isp_frame_desc frame = {{{}, 640, 480}, 1, 1, 1, 1};
    isp_lsc_params input = {};
    const isp_frame_desc *frame_or_null = &frame;
    const isp_lsc_params *input_or_null = &input;
    std::vector<float> gains[4];
    aic_lens_shading block = {};
    uintptr_t next_free = 0;
    float cell = 0;
    uint8_t enable = 1;

    scene(uint16_t width, uint16_t height, uint32_t format)
    {
        for (size_t c = 0; c < 4; ++c) {
            gains[c].assign(size_t{width} * height, static_cast<float>(c + 1));
            input.grid[c] = gains[c].data();
        }
        input.width = width;
        input.height = height;
        block.format = format;
    }

    uint32_t run(uint16_t *tables, const float *factors = nullptr)
    {
        next_free = reinterpret_cast<uintptr_t>(tables);
        return compute_lsc(sensor.width != 0 ? &sensor : nullptr, input_or_null, frame_or_null, &enable,
                           &block.scaled_width, &block.scaled_height, &block.columns, &block.rows, &block.format,
                           block.table, &next_free, factors, &cell);
    }
};

TEST(lsc, derives_the_grid_from_frame_and_sensor)
{
    using words = std::vector<uint32_t>;
    struct {
        uint16_t sensor_width, sensor_height;
        isp_frame_desc frame;
        words grid; // columns, rows, scaled width and height, cell
    } const cases[] = {
        {0, 0, {{{}, 3264, 2448}, 1, 1, 1, 1}, {27, 21, 3264, 2448, 64}}, // no sensor
        {1920, 1080, {{{}, 1920, 1080}, 1, 2, 3, 4}, {31, 18, 960, 810, 32}},
        {640, 480, {{{}, 640, 480}, 2, 3, 255, 1}, {21, 16, 426, 56864, 16}}, // 122400 - 65536
        {2000, 2000, {{{}, 129, 128}, 1, 1, 1, 1}, {3, 2, 129, 128, 64}},
        {65535, 65535, {{{}, 129, 128}, 1, 1, 1, 1}, {3, 2, 129, 128, 64}}, // more than 2^31 pixels
        {1999, 2000, {{{}, 65, 64}, 1, 1, 1, 1}, {3, 2, 65, 64, 32}},
        {1000, 1000, {{{}, 1, 2}, 1, 1, 1, 1}, {2, 2, 1, 2, 32}},
        {999, 1001, {{{}, 33, 32}, 1, 1, 1, 1}, {3, 2, 33, 32, 16}},
        {640, 480, {{{}, 8128, 8192}, 1, 1, 1, 1}, {255, 257, 8128, 8192, 16}}, // 65535 entries
    };
    for (const auto &[sensor_width, sensor_height, frame, grid] : cases) {
        scene s(2, 2, 8);
        s.sensor.width = sensor_width;
        s.sensor.height = sensor_height;
        s.frame = frame;
        const guarded<uint16_t> tables(size_t{4} * grid[0] * grid[1]);
        EXPECT_EQ(s.run(tables.data()), 0u);
        EXPECT_EQ(s.enable, 1);
        const auto cell = static_cast<uint32_t>(s.cell);
        EXPECT_EQ((words{s.block.columns, s.block.rows, s.block.scaled_width, s.block.scaled_height, cell}), grid);
        EXPECT_EQ(s.next_free, reinterpret_cast<uintptr_t>(tables.end()));
        const size_t first = sizeof(void *) == 4 ? reinterpret_cast<uintptr_t>(tables.data()) : 4976;
        for (size_t t = 0; t < 4; ++t)
            EXPECT_EQ(s.block.table[t], first + t * tables.size() / 4 * sizeof(uint16_t));
    }
}

TEST(lsc, rejects_invalid_input_and_writes_nothing_but_the_flag)
{
    using change = void (*)(scene &);
    constexpr change changes[] = {
        [](scene &s) { s.input_or_null = nullptr; },
        [](scene &s) { s.frame_or_null = nullptr; },
        [](scene &s) { s.input.width = 0; },
        [](scene &s) { s.input.height = 0; },
        [](scene &s) { s.input.grid[3] = nullptr; },
        [](scene &s) { s.frame.size.width = 0; },
        [](scene &s) { s.frame.horizontal_denominator = 0; },
        [](scene &s) { s.frame.size.height = 0; },
        [](scene &s) { s.frame.horizontal_numerator = 0; },
        [](scene &s) { s.frame.vertical_numerator = 0; },
        [](scene &s) { s.frame.vertical_denominator = 0; },
        [](scene &s) { s.frame.size.height = 32768, s.frame.vertical_numerator = 2; }, // scaled to 65536
        [](scene &s) {
            s.frame.size = {{}, 8129, 8192};
        }, // 256 x 257 entries
    };
    for (const change &apply : changes) {
        scene s(2, 2, 8);
        std::memset(&s.block, 0xA5, sizeof s.block);
        const aic_lens_shading before = s.block;
        apply(s);
        EXPECT_EQ(s.run(s.block.entries), 32u) << &apply - changes;
        EXPECT_EQ(s.enable, 0);
        EXPECT_EQ(std::memcmp(&s.block, &before, sizeof before), 0) << &apply - changes;
        EXPECT_EQ(s.next_free, reinterpret_cast<uintptr_t>(s.block.entries));
        EXPECT_EQ(s.cell, 0.0f);
    }
}

TEST(lsc, applies_each_channels_factor_in_the_tables_format)
{
    constexpr float factors[] = {1.25f, 1.0f, 0.33325f, 20.0f};
    constexpr float wild[] = {NAN, -1.0f, 1e9f, -INFINITY};
    constexpr float large[] = {3e6f, 1e6f, 1.0f, 1.0f}; // products on either side of 2^31
    struct {
        uint32_t format;
        const float *factors;
        uint16_t expected[4];
    } const cases[] = {
        {8, nullptr, {256, 512, 768, 1024}},
        {10, nullptr, {1024, 2048, 3072, 4096}},
        {8, factors, {320, 512, 255, 20480}}, // 3072 * 0.33325 = 1023.74
        {10, factors, {1280, 2048, 1023, 81920 - 65536}},
        {9, factors, {1024, 2048, 3072, 4096}},
        {8, wild, {0, 0, 65535, 0}},
        {10, wild, {0, 65536 - 2048, 65535, 0}},
        {8, large, {49152, 32768, 768, 1024}},
        {10, large, {65535, 0, 3072, 4096}},
    };
    for (const auto &c : cases) {
        scene s(5, 4, c.format);
        const guarded<uint16_t> tables(4 * entries);
        EXPECT_EQ(s.run(tables.data(), c.factors), 0u);
        for (size_t i = 0; i < tables.size(); ++i)
            ASSERT_EQ(tables[i], c.expected[i / entries]) << "format " << c.format << ", entry " << i;
    }
}

TEST(lsc, averages_only_grids_larger_both_ways)
{
    // Resampling keeps the corners; an average of 2 x 2 samples mixes in three of 1.0.
    constexpr std::pair<uint16_t, uint16_t> sizes[] = {{5, 4}, {21, 16}, {42, 16}, {21, 32}, {42, 32}};
    for (const auto &[width, height] : sizes) {
        scene s(width, height, 10);
        s.gains[0].front() = 2.0f;
        s.gains[0][width - 1u] = 3.0f;
        s.gains[0][size_t{width} * (height - 1u)] = 5.0f;
        const guarded<uint16_t> tables(4 * entries);
        EXPECT_EQ(s.run(tables.data()), 0u);
        const bool averaged = width > 21 && height > 16;
        EXPECT_EQ(tables[0], averaged ? 1280 : 2048) << width << " x " << height;
        EXPECT_EQ(tables[20], averaged ? 1536 : 3072);
        EXPECT_EQ(tables[size_t{15} * 21], averaged ? 2048 : 5120);
    }
}

TEST(lsc, keeps_a_table_whose_resampling_runs_out_of_memory)
{
    const long live = faults::live_blocks();
    for (long failing = faults::never; failing < 4; ++failing) {
        scene s(5, 4, 8);
        const guarded<uint16_t> tables(4 * entries, 1000);
        faults::fail_allocation(failing);
        EXPECT_EQ(s.run(tables.data()), 0u);
        faults::fail_allocation(faults::never);
        EXPECT_EQ(s.enable, 1);
        EXPECT_EQ(faults::live_blocks(), live);
        for (size_t i = 0; i < tables.size(); ++i)
            ASSERT_EQ(tables[i], static_cast<long>(i / entries) == failing ? 1000 : 256 * (1 + i / entries));
    }
}

TEST(lsc, keeps_tables_whose_resampling_is_refused)
{
    scene s(10, 10, 8);
    s.frame.size.width = s.frame.size.height = 32; // 2 x 2 entries, too few for an average
    const guarded<uint16_t> tables(4 * 4, 1000);
    const float factors[] = {2.0f, 2.0f, 2.0f, 2.0f};
    EXPECT_EQ(s.run(tables.data(), factors), 0u);
    EXPECT_EQ(s.enable, 1);
    EXPECT_EQ(s.block.columns * s.block.rows, 4u);
    EXPECT_EQ(s.next_free, reinterpret_cast<uintptr_t>(tables.end()));
    for (const uint16_t entry : tables)
        EXPECT_EQ(entry, 1000);
}

} // namespace
