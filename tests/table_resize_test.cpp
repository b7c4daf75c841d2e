#include <bit>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "guarded.h"
#include "qz_isp/table_resize.h"

namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr float per_mixed_unit = 0x1.ffffcp-19f;

struct size {
    int32_t width, height;
};

std::vector<uint16_t> resized_curve(std::initializer_list<float> curve, uint32_t scale, int32_t count)
{
    std::vector<uint16_t> out(static_cast<size_t>(count));
    EXPECT_EQ(isp_resize_1d_array_uint16(curve.begin(), static_cast<int32_t>(curve.size()), scale, out.data(), count),
              0u);
    return out;
}

TEST(curve_to_table, interpolates_and_scales_with_rounding)
{
    using table = std::vector<uint16_t>;
    EXPECT_EQ(resized_curve({0.5f, 1.0f}, 0, 3), (table{128, 192, 256}));
    EXPECT_EQ(resized_curve({0.5f, 1.0f}, 512, 3), (table{64, 96, 128}));
    // 1/256 under the next integer: truncated. 3 and 4 at half way: 3.5, rounded up. The last is half of 5, rounded up.
    EXPECT_EQ(resized_curve({3.996f / 256.0f, 4.0f / 256.0f}, 0, 3), (table{3, 4, 4}));
    EXPECT_EQ(resized_curve({0.0f, 5.0f / 256.0f}, 512, 2), (table{0, 3}));
    // Step 2048 / 3 = 682: the third point lies at 1364, not at 1365.33.
    EXPECT_EQ(resized_curve({0.0f, 0.0f, 4.0f}, 0, 4), (table{0, 0, 340, 1024}));
}

TEST(curve_to_table, keeps_low_bits_of_values_and_products)
{
    using table = std::vector<uint16_t>;
    EXPECT_EQ(resized_curve({-0.5f, 300.0f}, 0, 2), (table{0xff80, 76800 - 65536}));
    EXPECT_EQ(resized_curve({inf, -inf}, 0, 2), (table{0xffff, 0}));
    EXPECT_EQ(resized_curve({NAN, 1e30f}, 0, 2), (table{0, 0xffff}));
    EXPECT_EQ(resized_curve({1.0f, 1.0f}, 0xffffffff, 3), (table{0, 0, 0})); // -256 + 512 modulo 2^32, / 1024
    EXPECT_EQ(resized_curve({1.0f, 2.0f}, 1024 * 255, 2), (table{65280, 130560 - 65536}));
}

TEST(curve_to_table, gives_the_left_point_and_its_right_one_for_every_pair_of_counts)
{
    for (int32_t src_count = 2; src_count < 40; ++src_count) {
        const guarded<float> curve(static_cast<size_t>(src_count));
        for (size_t i = 0; i < curve.size(); ++i)
            curve[i] = static_cast<float>((i * 37) % 251) / 256.0f;
        for (int32_t dst_count = 2; dst_count < 260; ++dst_count) {
            const guarded<uint16_t> out(static_cast<size_t>(dst_count));
            ASSERT_EQ(isp_resize_1d_array_uint16(curve.data(), src_count, 0, out.data(), dst_count), 0u);
            const int64_t step = (src_count - 1) * int64_t{1024} / (dst_count - 1);
            for (int64_t i = 0; i < dst_count - 1; ++i) {
                const double at = static_cast<double>(i * step) / 1024.0;
                const auto left = static_cast<size_t>(at);
                const double low = curve[left] * 256.0;
                const double value = low + (curve[left + 1] * 256.0 - low) * (at - static_cast<double>(left));
                ASSERT_EQ(out[static_cast<size_t>(i)], std::floor(value + 0.5)) << src_count << ' ' << dst_count;
            }
            ASSERT_EQ(out[out.size() - 1], curve[curve.size() - 1] * 256.0f);
        }
    }
}

struct mix_case {
    int32_t mix;
    uint32_t gain;
    float first, middle, last;
};

TEST(mixed_tables, weigh_both_tables_and_the_gain)
{
    const std::vector<uint16_t> a = {100, 201};
    const std::vector<uint16_t> b = {1000, 2000};
    constexpr float k = per_mixed_unit;
    // Half way: 151 (150.5 rounded) and 1500.
    for (const mix_case &c : std::initializer_list<mix_case>{
             {0, 0, 100.0f / 256, 151.0f / 256, 201.0f / 256},
             {-5, 1024, 102400.0f * k, 154624.0f * k, 205824.0f * k},
             {0, 3, 300.0f * k, 453.0f * k, 603.0f * k},
             {256, 0, 332800.0f * k, 499968.0f * k, 666368.0f * k},
             {256, 1024, 332800.0f * k, 499968.0f * k, 666368.0f * k},
             {256, 512, 166400.0f * k, 249984.0f * k, 333184.0f * k},
             {2000, 0, 1024000.0f * k, 1536000.0f * k, 2048000.0f * k},
             {1, 1023, 103199.0f * k, 155820.0f * k, 207420.0f * k}, // 155820.68 truncated
         }) {
        std::vector<float> out(3);
        ASSERT_EQ(resize_and_mix_1d_array_uint16(a.data(), 2, b.data(), c.mix, c.gain, out.data(), 3), 0u);
        EXPECT_EQ(out, (std::vector<float>{c.first, c.middle, c.last})) << c.mix << ' ' << c.gain;
    }
    std::vector<float> alone(2);
    ASSERT_EQ(resize_and_mix_1d_array_uint16(a.data(), 2, nullptr, 500, 0, alone.data(), 2), 0u);
    EXPECT_EQ(alone, (std::vector<float>{100.0f / 256, 201.0f / 256}));
}

TEST(mixed_tables, wrap_the_product_with_the_gain_only_when_not_mixing)
{
    const std::vector<uint16_t> top(2, 65535);
    std::vector<float> out(2);
    resize_and_mix_1d_array_uint16(top.data(), 2, nullptr, 0, 65538, out.data(), 2);
    EXPECT_EQ(out, std::vector<float>(2, 65534.0f * per_mixed_unit)); // 4295032830 - 2^32
    resize_and_mix_1d_array_uint16(top.data(), 2, nullptr, 0, 65537, out.data(), 2);
    EXPECT_EQ(out, std::vector<float>(2, 4294967295.0f * per_mixed_unit));
    resize_and_mix_1d_array_uint16(top.data(), 2, top.data(), 7, 0xffffffff, out.data(), 2);
    EXPECT_EQ(out, std::vector<float>(2, 281470681677825.0f * per_mixed_unit));
}

TEST(table_resizing, refuses_bad_counts_and_writes_nothing)
{
    constexpr int32_t most = std::numeric_limits<int32_t>::max();
    const std::vector<float> curve(2);
    const std::vector<uint16_t> words(4, 7);
    std::vector<uint16_t> out(4, 9);
    std::vector<float> mixed(4, 9.0f);
    for (const auto &[from, to] : {std::pair{1, 2}, {2, 1}, {0, 2}, {-1, 2}, {2, -1}, {(1 << 21) + 1, 2}, {most, 2}}) {
        EXPECT_EQ(isp_resize_1d_array_uint16(curve.data(), from, 0, out.data(), to), 32u);
        EXPECT_EQ(resize_and_mix_1d_array_uint16(words.data(), from, nullptr, 0, 0, mixed.data(), to), 32u);
    }
    EXPECT_EQ(isp_resize_1d_array_uint16(nullptr, 2, 0, out.data(), 2), 32u);
    EXPECT_EQ(isp_resize_1d_array_uint16(curve.data(), 2, 0, nullptr, 2), 32u);
    EXPECT_EQ(resize_and_mix_1d_array_uint16(nullptr, 2, nullptr, 0, 0, mixed.data(), 2), 32u);
    EXPECT_EQ(resize_and_mix_1d_array_uint16(words.data(), 2, nullptr, 0, 0, nullptr, 2), 32u);

    const std::vector<uint8_t> bytes(4);
    const std::vector<uint32_t> longs(4);
    std::vector<uint8_t> out8(4, 9);
    std::vector<uint32_t> out32(4, 9);
    for (int bad = 0; bad < 4; ++bad)
        for (const int32_t value : {1, 0, -2, (1 << 23) + 1, (1 << 19) + 1, most}) {
            int32_t s[4] = {2, 2, 2, 2};
            s[bad] = value;
            const bool small = value < 2;
            if (small || (bad < 2 && value > 1 << 23)) {
                EXPECT_EQ(resize_2d_array_uint8(bytes.data(), s[0], s[1], out8.data(), s[2], s[3]), 32u);
                EXPECT_EQ(resize_2d_array_uint16(words.data(), s[0], s[1], out.data(), s[2], s[3]), 32u);
            }
            if (small || bad < 2) {
                EXPECT_EQ(resize_2d_array_uint32(longs.data(), s[0], s[1], out32.data(), s[2], s[3]), 32u);
            }
            if (small && (value >= 0 || bad % 2 == 1)) {
                EXPECT_EQ(resize_2d_array_float(mixed.data(), static_cast<uint16_t>(s[0]), s[1], mixed.data(),
                                                static_cast<uint16_t>(s[2]), s[3]),
                          32u);
            }
        }
    EXPECT_EQ(out, std::vector<uint16_t>(4, 9));
    EXPECT_EQ(mixed, std::vector<float>(4, 9.0f));
    EXPECT_EQ(out8, std::vector<uint8_t>(4, 9));
    EXPECT_EQ(out32, std::vector<uint32_t>(4, 9));
}

TEST(table_resizing, serves_the_largest_source_counts)
{
    const guarded<float> curve(1u << 21, 1.0f);
    curve[curve.size() - 1] = 2.0f;
    std::vector<uint16_t> out(3);
    EXPECT_EQ(isp_resize_1d_array_uint16(curve.data(), 1 << 21, 0, out.data(), 3), 0u);
    EXPECT_EQ(out, (std::vector<uint16_t>{256, 256, 512}));

    const guarded<uint8_t> wide(2u << 23, 3);
    wide[wide.size() - 1] = 77;
    std::vector<uint8_t> corners(4);
    EXPECT_EQ(resize_2d_array_uint8(wide.data(), 1 << 23, 2, corners.data(), 2, 2), 0u);
    EXPECT_EQ(corners, (std::vector<uint8_t>{3, 3, 3, 77}));
    EXPECT_EQ(resize_2d_array_uint8(wide.data(), 2, 1 << 23, corners.data(), 2, 2), 0u);
    EXPECT_EQ(corners, (std::vector<uint8_t>{3, 3, 3, 77}));
}

// What the integer routines document, as one sum over the four points around a position, with more bits than it needs.
template <typename T>
T bilinear(const T *src, size from, size to, int bits, int32_t row, int32_t column)
{
    const int64_t y = row * (((from.height - 1) * (int64_t{1} << bits)) / (to.height - 1));
    const int64_t x = column * (((from.width - 1) * (int64_t{1} << bits)) / (to.width - 1));
    const int64_t one = int64_t{1} << bits;
    uint64_t sum = uint64_t{1} << (2 * bits - 1);
    for (int64_t r = y / one; r <= y / one + 1; ++r)
        for (int64_t c = x / one; c <= x / one + 1; ++c) {
            const int64_t weight = (one - std::abs(y - r * one)) * (one - std::abs(x - c * one));
            if (weight != 0)
                sum += static_cast<uint64_t>(weight) * src[r * from.width + c];
        }
    return static_cast<T>(static_cast<uint32_t>(sum) >> (2 * bits));
}

float bilinear_float(const float *src, size from, size to, int32_t row, int32_t column)
{
    const auto at = [](int32_t i, int32_t n, int32_t m) {
        return static_cast<float>(i) * (static_cast<float>(n - 1) / static_cast<float>(m - 1));
    };
    const float fy = at(row, from.height, to.height);
    const float fx = at(column, from.width, to.width);
    const auto y = static_cast<int32_t>(fy);
    const auto x = static_cast<int32_t>(fx);
    const float *top = src + y * from.width;
    const float *bottom = y + 1 < from.height ? top + from.width : top;
    const int32_t right = x + 1 < from.width ? x + 1 : x;
    const float dy = fy - std::floor(fy);
    const float dx = fx - std::floor(fx);
    const float wy = 1 - dy;
    const float wx = 1 - dx;
    return (bottom[right] * dx) * dy + ((bottom[x] * wx) * dy + ((top[x] * wx) * wy + (top[right] * dx) * wy));
}

constexpr size sizes[] = {{2, 2},   {3, 2},   {2, 3},    {5, 7},    {17, 13},  {27, 21},   {32, 24},
                          {64, 48}, {63, 47}, {33, 129}, {257, 31}, {640, 20}, {1921, 11}, {4500, 3}};

// Every pair of sizes, on random values of which some are 0 and some the largest.
template <typename T, typename Resize, typename Expected>
void expect_resizes(Resize resize, Expected expected)
{
    std::mt19937 random(7);
    for (const size &from : sizes) {
        const guarded<T> src(static_cast<size_t>(from.width * from.height));
        for (T &value : src) {
            const uint32_t word = static_cast<uint32_t>(random());
            value = static_cast<T>(word % 7 == 0 ? std::numeric_limits<T>::max() : static_cast<T>(word));
        }
        for (const size &to : sizes) {
            const guarded<T> dst(static_cast<size_t>(to.width * to.height), 85);
            ASSERT_EQ(resize(src.data(), from, dst.data(), to), 0u);
            size_t differ = 0;
            for (int32_t row = 0, i = 0; row < to.height; ++row)
                for (int32_t column = 0; column < to.width; ++column, ++i)
                    differ += dst[static_cast<size_t>(i)] != expected(src.data(), from, to, row, column);
            EXPECT_EQ(differ, 0u) << from.width << 'x' << from.height << "->" << to.width << 'x' << to.height;
        }
    }
}

TEST(bilinear_resizing, weighs_the_four_points_around_a_position_in_8_bit)
{
    expect_resizes<uint8_t>(
        [](const uint8_t *src, size from, uint8_t *dst, size to) {
            return resize_2d_array_uint8(src, from.width, from.height, dst, to.width, to.height);
        },
        [](const uint8_t *src, size from, size to, int32_t r, int32_t c) { return bilinear(src, from, to, 8, r, c); });
}

TEST(bilinear_resizing, weighs_the_four_points_around_a_position_in_16_bit)
{
    expect_resizes<uint16_t>(
        [](const uint16_t *src, size from, uint16_t *dst, size to) {
            return resize_2d_array_uint16(src, from.width, from.height, dst, to.width, to.height);
        },
        [](const uint16_t *src, size from, size to, int32_t r, int32_t c) { return bilinear(src, from, to, 8, r, c); });
}

TEST(bilinear_resizing, wraps_in_32_bit)
{
    expect_resizes<uint32_t>(
        [](const uint32_t *src, size from, uint32_t *dst, size to) {
            return resize_2d_array_uint32(src, from.width, from.height, dst, to.width, to.height);
        },
        [](const uint32_t *src, size from, size to, int32_t r, int32_t c) {
            return bilinear(src, from, to, 12, r, c);
        });
}

TEST(bilinear_resizing, keeps_the_order_of_single_precision_steps)
{
    expect_resizes<float>(
        [](const float *src, size from, float *dst, size to) {
            return resize_2d_array_float(src, static_cast<uint16_t>(from.width), from.height, dst,
                                         static_cast<uint16_t>(to.width), to.height);
        },
        bilinear_float);
}

TEST(bilinear_resizing, interpolates_a_small_table)
{
    const std::vector<uint16_t> src = {0, 256, 512, 768};
    std::vector<uint16_t> dst(9);
    ASSERT_EQ(resize_2d_array_uint16(src.data(), 2, 2, dst.data(), 3, 3), 0u);
    EXPECT_EQ(dst, (std::vector<uint16_t>{0, 128, 256, 256, 384, 512, 512, 640, 768}));
    const std::vector<uint32_t> wraps = {256, 256, 256, 256};
    std::vector<uint32_t> out(4, 1);
    ASSERT_EQ(resize_2d_array_uint32(wraps.data(), 2, 2, out.data(), 2, 2), 0u);
    EXPECT_EQ(out, std::vector<uint32_t>(4, 0)); // 2^8 x 2^24
}

// Row indices keep 16 bits; the weights take up the rest.
TEST(bilinear_resizing, of_more_than_65536_rows_of_floats_starts_over)
{
    constexpr size tall = {2, 70000};
    const guarded<float> src(2 * 70000, 5.0f);
    src[0] = src[1] = 1.0f;
    src[2] = src[3] = 2.0f;
    src[2 * 65536] = src[2 * 65536 + 1] = inf;
    const guarded<float> dst(2 * 70000);
    ASSERT_EQ(resize_2d_array_float(src.data(), 2, tall.height, dst.data(), 2, tall.height), 0u);
    EXPECT_EQ(dst[2 * 65534], 5.0f);
    EXPECT_TRUE(std::isnan(dst[2 * 65535])); // row 65536 with weight 0
    EXPECT_EQ(dst[2 * 65536], 65537.0f);     // 1 x -65535 + 2 x 65536
    EXPECT_EQ(dst[2 * 65538], -65535.0f * 5.0f + 65536.0f * 5.0f);
}

} // namespace
