#include <bit>
#include <cmath>
#include <cstdint>
#include <initializer_list>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/table_resize.h"
#include "tests/resizing.h"

namespace {

constexpr float inf = std::numeric_limits<float>::infinity();

using test::size;

TEST(curve_to_table, interpolates_rounds_and_keeps_low_bits)
{
    const struct {
        std::vector<float> curve;
        uint32_t scale;
        std::vector<uint16_t> expected;
    } cases[] = {
        {{0.5f, 1.0f}, 512, {64, 96, 128}},
        // 1/256 under the next integer: truncated. 3 and 4 at half way: 3.5, rounded up.
        {{3.996f / 256.0f, 4.0f / 256.0f}, 0, {3, 4, 4}},
        {{0.0f, 5.0f / 256.0f}, 512, {0, 3}},
        // Step 2048 / 3 = 682: the third point lies at 1364, not at 1365.33.
        {{0.0f, 0.0f, 4.0f}, 0, {0, 0, 340, 1024}},
        {{-0.5f, 300.0f}, 0, {0xff80, 76800 - 65536}},
        {{inf, -inf}, 0, {0xffff, 0}},
        {{NAN, 1e30f}, 0, {0, 0xffff}},
        {{1.0f, 1.0f}, 0xffffffff, {0, 0, 0}}, // -256 + 512 modulo 2^32, / 1024
        {{1.0f, 2.0f}, 1024 * 255, {65280, 130560 - 65536}},
    };
    for (const auto &c : cases) {
        std::vector<uint16_t> out(c.expected.size());
        EXPECT_EQ(isp_resize_1d_array_uint16(c.curve.data(), static_cast<int32_t>(c.curve.size()), c.scale, out.data(),
                                             static_cast<int32_t>(out.size())),
                  0u);
        EXPECT_EQ(out, c.expected);
    }
}

TEST(mixed_tables, weigh_both_tables_and_the_gain)
{
    constexpr uint16_t low[] = {100, 201}; // 151 half way: 150.5 rounded
    constexpr uint16_t high[] = {1000, 2000};
    constexpr uint16_t top[] = {65535, 65535};
    constexpr float k = 0x1.ffffcp-19f;
    const struct {
        const uint16_t *a, *b;
        int32_t mix;
        uint32_t gain;
        std::vector<float> expected;
    } cases[] = {
        {low, high, 0, 0, {100.0f / 256, 151.0f / 256, 201.0f / 256}},
        {low, nullptr, 500, 0, {100.0f / 256, 151.0f / 256, 201.0f / 256}},
        {low, high, -5, 1024, {102400.0f * k, 154624.0f * k, 205824.0f * k}},
        {low, high, 256, 0, {332800.0f * k, 499968.0f * k, 666368.0f * k}},
        {low, high, 256, 512, {166400.0f * k, 249984.0f * k, 333184.0f * k}},
        {low, high, 2000, 0, {1024000.0f * k, 1536000.0f * k, 2048000.0f * k}},
        {low, high, 1, 1023, {103199.0f * k, 155820.0f * k, 207420.0f * k}}, // 155820.68 truncated
        // The product with the gain wraps only when not mixing: 4295032830 - 2^32.
        {top, nullptr, 0, 65538, std::vector<float>(3, 65534.0f * k)},
        {top, top, 7, 0xffffffff, std::vector<float>(3, 281470681677825.0f * k)},
    };
    for (const auto &c : cases) {
        std::vector<float> out(3);
        ASSERT_EQ(resize_and_mix_1d_array_uint16(c.a, 2, c.b, c.mix, c.gain, out.data(), 3), 0u);
        EXPECT_EQ(out, c.expected) << c.mix << ' ' << c.gain;
    }
}

// A routine, called with sizes.
template <typename T, typename Width>
auto sized(uint32_t (*resize)(const T *, Width, int32_t, T *, Width, int32_t))
{
    return [resize](const T *src, size from, T *dst, size to) {
        return resize(src, static_cast<Width>(from.width), from.height, dst, static_cast<Width>(to.width), to.height);
    };
}

TEST(table_resizing, refuses_bad_counts_and_writes_nothing)
{
    constexpr int32_t most = std::numeric_limits<int32_t>::max();
    const std::vector<float> curve(2);
    const std::vector<uint16_t> words(2, 7);
    std::vector<uint16_t> out(2, 9);
    std::vector<float> mixed(2, 9.0f);
    for (const auto &[from, to] : {std::pair{1, 2}, {2, 1}, {-1, 2}, {2, -1}, {(1 << 21) + 1, 2}, {most, 2}}) {
        EXPECT_EQ(isp_resize_1d_array_uint16(curve.data(), from, 0, out.data(), to), 32u);
        EXPECT_EQ(resize_and_mix_1d_array_uint16(words.data(), from, nullptr, 0, 0, mixed.data(), to), 32u);
    }
    EXPECT_EQ(isp_resize_1d_array_uint16(nullptr, 2, 0, out.data(), 2), 32u);
    EXPECT_EQ(isp_resize_1d_array_uint16(curve.data(), 2, 0, nullptr, 2), 32u);
    EXPECT_EQ(resize_and_mix_1d_array_uint16(nullptr, 2, nullptr, 0, 0, mixed.data(), 2), 32u);
    EXPECT_EQ(resize_and_mix_1d_array_uint16(words.data(), 2, nullptr, 0, 0, nullptr, 2), 32u);
    EXPECT_EQ(out, std::vector<uint16_t>(2, 9));
    EXPECT_EQ(mixed, std::vector<float>(2, 9.0f));

    for (int bad = 0; bad < 4; ++bad)
        for (const int32_t value : {1, 0, -2, (1 << 23) + 1, (1 << 19) + 1, most}) {
            if (value < 2 || (bad < 2 && value > 1 << 23)) {
                test::expect_refused<uint8_t>(sized(resize_2d_array_uint8), bad, value);
                test::expect_refused<uint16_t>(sized(resize_2d_array_uint16), bad, value);
            }
            if (value < 2 || bad < 2)
                test::expect_refused<uint32_t>(sized(resize_2d_array_uint32), bad, value);
            if (value < 2 && (value >= 0 || bad % 2 == 1)) // widths of float tables are unsigned
                test::expect_refused<float>(sized(resize_2d_array_float), bad, value);
        }
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
    for (const size &from : {size{1 << 23, 2}, {2, 1 << 23}}) {
        std::vector<uint8_t> corners(4);
        EXPECT_EQ(resize_2d_array_uint8(wide.data(), from.width, from.height, corners.data(), 2, 2), 0u);
        EXPECT_EQ(corners, (std::vector<uint8_t>{3, 3, 3, 77}));
    }
}

// What the integer routines document, as one sum over the four points around a position, with more bits than it needs.
template <typename T, int bits>
T bilinear(const T *src, size from, size to, int32_t row, int32_t column)
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

TEST(bilinear_resizing, weighs_the_four_points_around_a_position)
{
    const std::vector<size> sizes = {{2, 2},   {3, 2},   {2, 3},    {5, 7},    {17, 13},  {27, 21},   {32, 24},
                                     {66, 48}, {63, 47}, {33, 129}, {257, 31}, {640, 20}, {1921, 11}, {4500, 3}};
    test::expect_resizes<float>(sized(resize_2d_array_float), bilinear_float, sizes, sizes);
    test::expect_resizes<uint8_t>(sized(resize_2d_array_uint8), bilinear<uint8_t, 8>, sizes, sizes);
    test::expect_resizes<uint16_t>(sized(resize_2d_array_uint16), bilinear<uint16_t, 8>, sizes, sizes);
    test::expect_resizes<uint32_t>(sized(resize_2d_array_uint32), bilinear<uint32_t, 12>, sizes, sizes);
    const std::vector<size> wide = {{70001, 2}}; // more than 16 bits count
    test::expect_resizes<uint8_t>(sized(resize_2d_array_uint8), bilinear<uint8_t, 8>, {{27, 21}}, wide);
    test::expect_resizes<uint32_t>(sized(resize_2d_array_uint32), bilinear<uint32_t, 12>, {{27, 21}}, wide);
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
