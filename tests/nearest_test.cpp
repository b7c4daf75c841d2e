#include <algorithm>
#include <cstdint>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/nearest.h"
#include "tests/resizing.h"

namespace {

using test::size;

uint32_t scale(const uint32_t *src, size from, uint32_t *dst, size to)
{
    return image_nearest_neighbor_scale_uint32(src, from.width, from.height, dst, to.width, to.height);
}

uint32_t scale(const uint16_t *src, size from, uint16_t *dst, size to)
{
    return image_upscale_nearest_neighbor_uint16(src, dst, static_cast<uint16_t>(from.width),
                                                 static_cast<uint16_t>(from.height), static_cast<uint16_t>(to.width),
                                                 static_cast<uint16_t>(to.height));
}

uint32_t scale(const int32_t *src, size from, int32_t *dst, size to, uint8_t use_maximum = 0)
{
    return image_downscale_nearest_neighbor_int32(src, dst, static_cast<uint16_t>(from.width),
                                                  static_cast<uint16_t>(from.height), static_cast<uint16_t>(to.width),
                                                  static_cast<uint16_t>(to.height), use_maximum);
}

// The source columns that a row of n picks its m outputs from, told by their values.
template <typename T>
std::vector<T> picked(int32_t n, int32_t m)
{
    const guarded<T> src(static_cast<size_t>(2 * n));
    std::iota(src.begin(), src.end(), T{0});
    const guarded<T> dst(static_cast<size_t>(2 * m));
    EXPECT_EQ(scale(src.data(), {n, 2}, dst.data(), {m, 2}), 0u);
    EXPECT_TRUE(std::equal(dst.begin(), dst.begin() + m, dst.begin() + m,
                           [n](T above, T below) { return above + static_cast<T>(n) == below; }));
    return {dst.begin(), dst.begin() + m};
}

TEST(fixed_point_rule, picks_columns)
{
    using columns = std::vector<uint32_t>;
    EXPECT_EQ(picked<uint32_t>(5, 3), (columns{0, 1, 3})); // step 109226 + 1: 1.67, 3.33
    EXPECT_EQ(picked<uint32_t>(7, 1), (columns{0}));
    // Step 255 + 1: position 256 lies at 65536, one behind the only element.
    EXPECT_EQ(picked<uint32_t>(1, 257), columns(257, 0));
    // Sizes whose product with 65536 takes more than 32 bits.
    EXPECT_EQ(picked<uint32_t>(200000, 4), (columns{0, 50000, 100000, 150000}));
    EXPECT_EQ(picked<uint32_t>(32768, 100001)[100000], 32767u);
}

TEST(ceiling_rule, picks_columns)
{
    using columns = std::vector<uint16_t>;
    EXPECT_EQ(picked<uint16_t>(5, 3), (columns{1, 3, 4}));
    EXPECT_EQ(picked<int32_t>(3, 7), (std::vector<int32_t>{0, 0, 1, 1, 2, 2, 2}));
    // 3 / 21 rounds up, and 21 of it come to more than 3.
    EXPECT_EQ(picked<uint16_t>(3, 21), (columns{0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 1, 1, 1, 1, 2, 2, 2, 2, 2, 2, 2}));
    EXPECT_EQ(picked<uint16_t>(300, 2900)[144], 15u); // 145 x 300 / 2900 is 15, and a little more in single precision
    for (const int32_t n : {2, 3, 1000, 32767})
        for (const int32_t m : {2, 41, 4099, 65535}) {
            const auto all = picked<uint16_t>(n, m);
            EXPECT_TRUE(std::is_sorted(all.begin(), all.end()));
            EXPECT_EQ(all.back(), n - 1);
        }
}

// The ceiling rule without fractions, at sizes whose ratios do not round across a whole number.
int32_t whole_ceiling(int32_t k, int32_t n, int32_t m)
{
    return static_cast<int32_t>((static_cast<int64_t>(k + 1) * n + m - 1) / m) - 1;
}

template <typename T, typename Index>
void expect_picked(Index index)
{
    const std::vector<size> sizes = {{2, 2},   {3, 5},   {4, 4},    {21, 3},  {27, 21},
                                     {64, 48}, {100, 7}, {3001, 6}, {9000, 2}};
    test::expect_resizes<T>(
        [](const T *src, size from, T *dst, size to) { return scale(src, from, dst, to); },
        [index](const T *src, size from, size to, int32_t row, int32_t column) {
            return src[index(row, from.height, to.height) * from.width + index(column, from.width, to.width)];
        },
        sizes, sizes);
}

TEST(picking, takes_rows_and_columns_at_every_ratio)
{
    expect_picked<uint32_t>([](int32_t k, int32_t n, int32_t m) {
        int64_t index = 0; // counts whole steps instead of shifting
        for (int64_t at = k * (int64_t{n} * 65536 / m + 1); at >= 65536 && index < n - 1; at -= 65536)
            ++index;
        return static_cast<int32_t>(index);
    });
    expect_picked<uint16_t>(whole_ceiling);
    expect_picked<int32_t>(whole_ceiling);
}

TEST(block_maximum, tiles_the_source)
{
    std::mt19937 random(5);
    for (const size &from : {size{2, 2}, {7, 5}, {64, 48}, {300, 9}, {4100, 3}, {9001, 4}, {32769, 2}, {65535, 2}})
        for (const size &to :
             {size{2, 2}, {3, 2}, {5, 7}, {41, 31}, {64, 48}, {299, 3}, {2900, 2}, {5003, 2}, {16380, 2}}) {
            const guarded<int32_t> src(static_cast<size_t>(from.width * from.height));
            std::generate(src.begin(), src.end(), [&] { return static_cast<int32_t>(random()); });
            // Each source element raises the one output whose block holds it.
            std::vector<int32_t> expected(static_cast<size_t>(to.width * to.height));
            const auto home = [](const std::vector<int32_t> &block_ends, int32_t at) {
                return static_cast<size_t>(std::lower_bound(block_ends.begin(), block_ends.end(), at) -
                                           block_ends.begin());
            };
            const auto rows = picked<int32_t>(from.height, to.height);
            const auto columns = picked<int32_t>(from.width, to.width);
            for (int32_t y = 0, i = 0; y < from.height; ++y)
                for (int32_t x = 0; x < from.width; ++x, ++i) {
                    int32_t &peak = expected[home(rows, y) * static_cast<size_t>(to.width) + home(columns, x)];
                    peak = std::max(peak, src[static_cast<size_t>(i)]);
                }
            const guarded<int32_t> dst(expected.size(), 1);
            ASSERT_EQ(scale(src.data(), from, dst.data(), to, to.width % 2 != 0 ? 1 : 255), 0u);
            EXPECT_TRUE(std::equal(dst.begin(), dst.end(), expected.begin()))
                << from.width << 'x' << from.height << "->" << to.width << 'x' << to.height;
        }
}

TEST(nearest_neighbour, refuses_bad_sizes_and_writes_nothing)
{
    const auto call = [](auto *src, size from, auto *dst, size to) { return scale(src, from, dst, to); };
    const auto maximum = [](const int32_t *src, size from, int32_t *dst, size to) {
        return scale(src, from, dst, to, 1);
    };
    for (int bad = 0; bad < 4; ++bad)
        for (const int32_t value : {1, 0, -1}) {
            if (value >= 0) {
                test::expect_refused<uint16_t>(call, bad, value);
                test::expect_refused<int32_t>(call, bad, value);
                test::expect_refused<int32_t>(maximum, bad, value);
            }
            if (value <= 0)
                test::expect_refused<uint32_t>(call, bad, value);
        }
    uint32_t word = 9;
    EXPECT_EQ(scale(nullptr, {2, 2}, &word, {2, 2}), 32u);
    EXPECT_EQ(scale(&word, {2, 2}, nullptr, {2, 2}), 32u);
    EXPECT_EQ(word, 9u);
}

} // namespace
