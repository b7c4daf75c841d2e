// Routines that make a table of one size from one of another: called as resize(src, from, dst, to).
#pragma once

#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/guarded.h"

namespace test {

struct size {
    int32_t width, height;

    size_t area() const { return static_cast<size_t>(width) * static_cast<size_t>(height); }
};

// From each size to each: the values that expected(src, from, to, row, column) gives, of random ones of which some are
// 0 and some the largest.
template <typename T, typename Resize, typename Expected>
void expect_resizes(Resize resize, Expected expected, const std::vector<size> &sources,
                    const std::vector<size> &targets)
{
    std::mt19937 random(7);
    for (const size &from : sources) {
        const guarded<T> src(from.area());
        for (T &value : src) {
            const auto word = static_cast<uint32_t>(random());
            value = word % 7 == 0 ? std::numeric_limits<T>::max() : static_cast<T>(word % 11 == 0 ? 0 : word);
        }
        for (const size &to : targets) {
            const guarded<T> dst(to.area(), 85);
            ASSERT_EQ(resize(src.data(), from, dst.data(), to), 0u);
            size_t differ = 0;
            for (int32_t row = 0, i = 0; row < to.height; ++row)
                for (int32_t column = 0; column < to.width; ++column, ++i)
                    differ += dst[static_cast<size_t>(i)] != expected(src.data(), from, to, row, column);
            EXPECT_EQ(differ, 0u) << from.width << 'x' << from.height << "->" << to.width << 'x' << to.height;
        }
    }
}

// With one of the four counts of 2 by 2 and 2 by 2 replaced, by its number from 0 to 3.
template <typename T, typename Resize>
void expect_refused(Resize resize, int bad, int32_t value)
{
    int32_t s[4] = {2, 2, 2, 2};
    s[bad] = value;
    const std::vector<T> src(4, 1);
    std::vector<T> dst(4, 9);
    EXPECT_EQ(resize(src.data(), size{s[0], s[1]}, dst.data(), size{s[2], s[3]}), 32u) << bad << ' ' << value;
    EXPECT_EQ(dst, std::vector<T>(4, 9));
}

} // namespace test
