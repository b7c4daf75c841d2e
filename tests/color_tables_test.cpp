#include <array>
#include <cstring>
#include <limits>
#include <numeric>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/color.h"
#include "qz_mkn.h"
#include "tests/digest.h"
#include "tests/guarded.h"

namespace {

using table = std::vector<uint16_t>;
using channels = std::array<float, 4>;
using words = std::array<uint32_t, 4>;

constexpr float infinity = std::numeric_limits<float>::infinity();
constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr float denormal = std::numeric_limits<float>::denorm_min();

TEST(gamma, normalises_resamples_and_applies_effects)
{
    struct {
        std::vector<float> curve; // empty: none
        uint32_t points, effects;
        float threshold;
        table expected;
    } const cases[] = {
        {{}, 0, 0, 1, {0, 1360, 2735, 4095}},        // 85 and 171 of 256
        {{0, 0.5f}, 2, 0, 1, {0, 1376, 2719, 4095}}, // 43 and 85 of 128
        {{0, 0.25f, 1}, 3, 0, 1, {0, 688, 2047, 4095}},
        {{1, 0}, 2, 0, 1, {4095, 2735, 1376, 0}}, // 171 and 86 of 256
        {{0, 1 / 300.0f}, 2, 0, 1, {0, 0, 0, 0}},
        {{0, 128.0f}, 2, 0, 1, {0, 1343, 2685, 4032}}, // a factor of 126/1024
        {{}, 2, 0x200, 1, {4095, 2735, 1360, 0}},
        {{}, 2, 0x40, 0.74f, {0, 0, 4095, 4095}},
        {{}, 2, 0x40, -infinity, {4095, 4095, 4095, 4095}},
        {{}, 2, 0x40, nan, {4095, 4095, 4095, 4095}},
        {{}, 2, 0x40, infinity, {0, 0, 0, 0}},
        {{}, 2, 0xc0, 0.5f, {0, 0, 0, 0}},
        {{}, 2, 0, 1, {7}},
        {{}, 2, 0x2c0, 1, table(0x10000, 7)}, // a length whose low 16 bits are 0
        {{1}, 1, 0x2c0, 1, {7, 7, 7, 7}},
        {{1}, 0xffffffff, 0x2c0, 1, {7, 7, 7, 7}},
    };
    for (const auto &c : cases) {
        const isp_gamma_params gamma = {{}, c.points};
        table t(c.expected.size(), 7);
        compute_gamma(&gamma, c.curve.empty() ? nullptr : c.curve.data(), c.effects, t.data(),
                      static_cast<uint32_t>(t.size()), c.threshold, nullptr);
        EXPECT_EQ(t, c.expected) << c.points << " points, effects " << c.effects << ", threshold " << c.threshold;
    }
}

TEST(gamma, notes_one_byte_whatever_comes_of_the_table)
{
    const isp_gamma_params gamma = {};
    const float point = 1.0f;
    uint16_t t[2] = {7, 7};
    qz_mkn *mkn = qz_mkn_create();
    compute_gamma(nullptr, nullptr, 0x2c0, t, 2, 1.0f, mkn);
    compute_gamma(&gamma, &point, 0x2c0, t, 2, 1.0f, mkn);
    EXPECT_EQ(t[1], 7);
    ASSERT_EQ(qz_mkn_record_count(mkn), 2u);
    for (uint32_t i = 0; i < 2; ++i) {
        qz_mkn_record record = {};
        qz_mkn_get_record(mkn, i, &record);
        EXPECT_TRUE(record.format == QZ_MKN_U8 && record.name == 540 && record.count == 1 && record.key == nullptr);
        EXPECT_EQ(*static_cast<const uint8_t *>(record.data), 2 * i);
    }
    qz_mkn_destroy(mkn);
}

TEST(invert_gamma, subtracts_from_the_last_entry_and_wraps)
{
    table t = {0, 9, 3};
    invert_gamma(t.data() + 3, 0);
    invert_gamma(t.data(), 3);
    invert_gamma(t.data() + 1, 1);
    EXPECT_EQ(t, (table{3, 0, 0}));
    std::vector<float> f = {0.0f, 0.75f, 0.5f};
    invert_gamma_f(f.data() + 3, 0);
    invert_gamma_f(f.data(), 3);
    invert_gamma_f(f.data() + 1, 1);
    EXPECT_EQ(f, (std::vector{0.5f, 0.0f, 0.0f}));
}

TEST(brightness_contrast, bends_tables_of_both_kinds_to_the_bit)
{
    const table in = {0, 1, 100, 511, 512, 2000, 2047, 2048, 3000, 4094, 4095};
    const auto n = static_cast<int32_t>(in.size());
    uint64_t digests[2] = {};
    for (int setting = -128; setting < 128; ++setting)
        for (const auto &[b, c] : {std::pair{setting, 0}, {0, setting}, {setting, -1 - setting}}) {
            table out = in; // in place
            compute_brightness_contrast(static_cast<int8_t>(b), static_cast<int8_t>(c), out.data(), out.data(), n);
            digests[0] = test::digest(out.data(), out.size() * sizeof out[0], digests[0]);
            std::vector<float> f(in.begin(), in.end());
            compute_brightness_contrast_f(static_cast<int8_t>(b), static_cast<int8_t>(c), f.data(), n);
            digests[1] = test::digest(f.data(), f.size() * sizeof f[0], digests[1]);
            if (b == 127 && c == 0) { // y = 4095 (x / 4095)^0.25
                EXPECT_EQ(out[3], 2434);
                EXPECT_NEAR(f[3], 2433.9f, 0.1f);
            }
        }
    EXPECT_EQ(digests[0], 0x20e153d2b9177d09u);
    EXPECT_EQ(digests[1], 0xf3a823635e0dff3fu);
}

TEST(brightness_contrast, keeps_what_it_cannot_or_need_not_bend)
{
    table all(70000); // more than 16 bits count
    std::iota(all.begin(), all.end(), uint16_t{1});
    for (const table &small : {table{}, table{0, 0}, table{0, 1, 1, 0}, table(700, 4095), all}) {
        const auto n = static_cast<int32_t>(small.size());
        const int8_t b = n == 70000 ? 0 : -100;
        table bent(small.size(), 7);
        compute_brightness_contrast(b, b, small.data(), bent.data(), n);
        EXPECT_EQ(bent, small);
        std::vector<float> f(small.begin(), small.end());
        compute_brightness_contrast_f(b, b, f.data(), n);
        EXPECT_EQ(f, std::vector<float>(small.begin(), small.end()));
    }
    compute_brightness_contrast_f(1, 1, nullptr, 4);
}

TEST(white_balance, shares_the_shift_of_the_largest_integer_part)
{
    struct {
        channels gains;
        uint32_t shift;
        words expected;
    } const cases[] = {
        {{0.5f, 0.75f, 0.9f, 0.999f}, 0, {32768, 49152, 58982, 65470}},
        {{3.9999f, 4.0f, 0.0f, 1.0f}, 3, {32767, 32768, 0, 8192}},
        {{65535.99f, 1.0f, denormal, 0.0f}, 16, {65535, 1, 0, 0}},
        {{-1.0f, -infinity, nan, 0.5f}, 0, {0, 0, 0, 32768}},
        {{65536.0f, 1.0f, 2.0f, 0.5f}, 17, {32767, 0, 1, 0}},
        {{infinity, 1.0f, 2.0f, 0.5f}, 32, {0, 0, 0, 0}},
    };
    for (const auto &c : cases) {
        uint32_t shift = 99;
        words k = {};
        const guarded<float> gains(4);
        std::copy(c.gains.begin(), c.gains.end(), gains.begin());
        compute_white_balance(gains.data(), &shift, &k[1], &k[0], &k[3], &k[2]);
        EXPECT_EQ(shift, c.shift) << c.gains[0];
        EXPECT_EQ(k, c.expected) << c.gains[0];
    }
}

TEST(sensor_levels, become_fractions_and_gains_of_full_scale)
{
    constexpr uint32_t most = std::numeric_limits<uint32_t>::max();
    struct {
        channels levels;
        uint16_t bit_depth;
        words fractions;
        channels gains;
    } const cases[] = {
        {{0, 64, 1023, -1023}, 10, {0, 4100, 65536, 0}, {1, 1.0667362f, infinity, 0.5f}},
        {{256, 4095, 4096, -infinity}, 12, {4097, 65536, 65552, 0}, {4095 / 3839.0f, infinity, -4095, 0}},
        {{denormal, 1073741824, 8e14f, infinity}, 31, {0, 32768, most, most}, {1, 2, -2.684361e-06f, 0}},
        {{0.5f, 1, -1, denormal}, 0, {most, most, 0, most}, {0, 0, 0, 0}},
        {{1, 2, 3, 4}, 40, {257, 514, 771, 1028}, {255 / 254.0f, 255 / 253.0f, 255 / 252.0f, 255 / 251.0f}},
    };
    for (const auto &c : cases) {
        words k = {9, 9, 9, 9};
        EXPECT_EQ(compute_isp_black_level_compensation(c.levels.data(), c.bit_depth, &k[1], &k[0], &k[3], &k[2]), 0u);
        EXPECT_EQ(k, c.fractions) << c.bit_depth << " bits";
        channels gains = {9, 9, 9, 9};
        compute_isp_lsc_saturation_compensation(c.levels.data(), c.bit_depth, gains.data());
        for (size_t i = 0; i < 4; ++i)
            EXPECT_FLOAT_EQ(gains[i], c.gains[i]) << c.bit_depth << " bits";
    }
}

TEST(ctc_config, scales_six_values_and_copies_four)
{
    using block = std::array<uint16_t, 11>;
    struct {
        float factor;
        block tuned, expected; // six values, shift, four values
    } const cases[] = {
        {3.0f, {4096, 100, 0, 0, 0, 0, 9, 6, 7, 8, 9}, {6144, 150, 0, 0, 0, 0, 10, 6, 7, 8, 9}},
        {2.0f, {0, 0, 0, 0, 3, 4096, 65535, 6, 7, 8, 9}, {0, 0, 0, 0, 3, 4096, 0, 6, 7, 8, 9}},
        {0.99f, {100, 1, 0, 0, 0, 0, 9, 6, 7, 8, 9}, {99, 0, 0, 0, 0, 0, 9, 6, 7, 8, 9}},
        {-5.0f, {100, 1, 2, 3, 4, 5, 9, 6, 7, 8, 9}, {0, 0, 0, 0, 0, 0, 9, 6, 7, 8, 9}},
        {infinity, {1, 0, 2, 3, 4, 5, 9, 6, 7, 8, 9}, {8191, 0, 8191, 8191, 8191, 8191, 28, 6, 7, 8, 9}},
    };
    for (const auto &c : cases) {
        alignas(isp_record) std::array<uint16_t, 15> record = {};
        std::memcpy(&record[4], c.tuned.data(), sizeof c.tuned);
        block out = {};
        compute_ctc_config(reinterpret_cast<const isp_record *>(record.data()), c.factor, out.data());
        EXPECT_EQ(out, c.expected) << c.factor;
    }
}

} // namespace
