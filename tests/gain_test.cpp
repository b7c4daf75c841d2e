#include <limits>

#include <gtest/gtest.h>

#include "qz_isp/gain.h"

namespace {

TEST(gain, linear_interpolation_rounds_half_away_from_zero)
{
    struct expectation {
        int32_t x0, x1, y0, y1, x, y;
    };
    constexpr int32_t max = std::numeric_limits<int32_t>::max();
    constexpr int32_t min = std::numeric_limits<int32_t>::min();
    for (const auto &[x0, x1, y0, y1, x, y] : {
             expectation{256, 512, 0, 100, 384, 50},
             {256, 512, 0, 100, 320, 25},
             {0, 2, 0, 3, 1, 2},
             {0, 2, 0, -3, 1, -2},
             {7, 7, 5, 9, 1234, 5},
             {0, 65536, 0, 65536, 32768, -32768}, // the product wraps
             {0, 1, max, max, 0, max},
             {0, 1, min, min, 0, min},
         })
        EXPECT_EQ(interpolate_linear(x0, x1, y0, y1, x), y) << y0 << ' ' << y1 << ' ' << x;
}

TEST(gain, rows_are_bracketed_in_any_order_and_never_extrapolated)
{
    const int32_t table[] = {512, 100, -1, 256, 0, -2, 256, 7, -3, 512, 9, -4};
    struct expectation {
        uint16_t gain;
        uint32_t value;
    };
    for (const auto &[gain, value] : {expectation{100, 0}, {256, 0}, {320, 25}, {384, 50}, {512, 100}, {1000, 100}}) {
        uint32_t out[3] = {99, 99, 99};
        compute_generic_params(gain, table, 2, 4, out);
        EXPECT_EQ(out[0], value) << gain;
        EXPECT_EQ(out[2], 99u);
    }
    const int32_t negative_key[] = {-5, 40, 65535, 80};
    uint32_t out = 0;
    compute_generic_params(65535, negative_key, 1, 2, &out);
    EXPECT_EQ(out, 80u);
}

} // namespace
