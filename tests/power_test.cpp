#include <bit>
#include <cfloat>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "color/tone_curves.h"
#include "util/power/exact_power.h"
#include "util/power/power.h"
#include "util/power/power_estimate.h"

namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

enum class curve { brightness, contrast };

float exponent_of(curve kind, int control)
{
    const auto setting = static_cast<int8_t>(control);
    return kind == curve::brightness ? qz::brightness_exponent(setting) : qz::contrast_exponent(setting);
}

float float_of(size_t bits)
{
    return std::bit_cast<float>(static_cast<uint32_t>(bits));
}

// Calls with each of the 510 exponents and random bases: fractions of 1 for brightness, integers for contrast.
template <typename Look>
void at_every_exponent(size_t count, const Look &look)
{
    std::mt19937 random(1);
    std::vector<float> bases(count);
    for (const curve kind : {curve::brightness, curve::contrast}) {
        for (int control = -128; control < 128; ++control) {
            for (float &base : bases)
                base = kind == curve::brightness ? float_of(0x3f800000 - random() % 0x8000000)
                                                 : static_cast<float>(random() % 65536);
            look(exponent_of(kind, control), bases);
        }
    }
}

TEST(power, is_the_float_nearest_to_a_longer_one)
{
    if constexpr (LDBL_MANT_DIG < 64)
        GTEST_SKIP() << "long double is not longer";
    constexpr long double margin = 1.0L / (1LL << 60);                           // far more than powl() errs by
    at_every_exponent(175, [](float exponent, const std::vector<float> &bases) { // stretches and a rest
        std::vector<float> found = bases;
        qz::powers(found.data(), found.size(), exponent);
        for (size_t i = 0; i < bases.size(); ++i) {
            const long double expected = std::pow(static_cast<long double>(bases[i]), exponent);
            ASSERT_GE(found[i], static_cast<float>(expected * (1 - margin))) << bases[i] << " ^ " << exponent;
            ASSERT_LE(found[i], static_cast<float>(expected * (1 + margin))) << bases[i] << " ^ " << exponent;
        }
    });
}

TEST(power, estimates_err_by_half_of_what_is_allowed_for)
{
    std::mt19937 random(2);
    at_every_exponent(1, [&random](float exponent, const std::vector<float> & /*bases*/) {
        for (int i = 0; i < 100; ++i) {
            const auto base =
                static_cast<uint32_t>(qz::first_ordinary + random() % (qz::ordinary_end - qz::first_ordinary));
            const qz::wide_power power = qz::power_in_two_doubles(std::bit_cast<float>(base), exponent);
            const auto estimate = std::bit_cast<double>(qz::estimate_power(base, exponent));
            const double error = std::ldexp(estimate, -power.scale) - power.value.high - power.value.low;
            ASSERT_LT(std::fabs(error), qz::estimate_error / 2 * std::ldexp(power.value.high, -53))
                << std::bit_cast<float>(base) << " ^ " << exponent;
        }
    });
}

// A square of a float and the cube of a short one are doubles: what a power leaves of them is its whole error.
TEST(power, squares_and_cubes_leave_nothing_in_two_doubles)
{
    std::mt19937 random(3);
    for (int i = 0; i < 20000; ++i) {
        const auto base = float_of(1 + random() % 0x7f7fffff);
        const float shorter = float_of(std::bit_cast<uint32_t>(base) & 0xffffff80);
        for (const auto &[x, exponent] : {std::pair(base, 2.0f), {shorter, 3.0f}}) {
            const qz::wide_power power = qz::power_in_two_doubles(x, exponent);
            const double exact = exponent == 2.0f ? double{x} * x : double{x} * x * x;
            ASSERT_EQ(std::ldexp(power.value.high, power.scale), exact) << x << " ^ " << exponent;
            ASSERT_LT(std::fabs(power.value.low), 0x1p-90) << x << " ^ " << exponent;
        }
    }
}

// Powers next to half of a float's last place, from arithmetic of 400 bits; the estimate alone leaves them open.
TEST(power, next_to_a_rounding_boundary_takes_the_exact_way)
{
    using enum curve;
    struct {
        curve kind;
        int control;
        float base, power;
    } const cases[] = {
        {brightness, 86, 0x1.56875cp-9f, 0x1.b6dac4p-5f},   // 2.5e-10 of the last place above half of it
        {brightness, 9, 0x1.b6c42ep-6f, 0x1.09ed9ep-5f},    // 2.7e-9
        {brightness, -62, 0x1.676548p-13f, 0x1.307a9p-37f}, // 7.9e-9 below
        {brightness, -3, 0x1.5a0c9p-13f, 0x1.31e2b8p-14f},  // 8.4e-9
        {brightness, -38, 0x1.ec87fep-1f, 0x1.d65f0ap-1f},  // -1.5e-8
        {brightness, -127, 0x1.8509f4p-9f, 0x1.37199cp-42f},
        {contrast, -67, 0x1.098ap+15f, 0x1.ae5e56p+8f},
        {contrast, 113, 0x1.fbeep+15f, 0x1.db32eap+72f},
        {contrast, 7, 0x1.56e8p+15f, 0x1.c47bfcp+18f},
        {contrast, 83, 0x1.c1p+8f, 0x1.cb2f5ap+31f},
        {brightness, -32, 4097, 16785408}, // of 16785409, to even
        {brightness, -32, 4099, 16801800}, // of 16801801
        // Not normal: units of 2^-149, of which 1.69, 0.99979, half a one, a little more.
        {brightness, -64, 0x1.8p-50f, 0x1p-148f},
        {brightness, -32, 0x1.6ap-75f, 0x1p-149f},
        {brightness, -32, 0x1p-75f, 0},
        {brightness, -32, 0x1.000002p-75f, 0x1p-149f},
        {contrast, -128, 0x1p-149f, 0x1.261112p-30f},
        {brightness, -32, 0x1.fffffep+63f, 0x1.fffffcp+127f},
        {brightness, -32, 0x1p+64f, infinity},
    };
    for (const auto &c : cases)
        EXPECT_EQ(qz::power(c.base, exponent_of(c.kind, c.control)), c.power) << c.base << ' ' << c.control;
}

TEST(power, of_zeros_infinities_and_negative_numbers_is_as_in_the_c_library)
{
    constexpr float whole[] = {1, 2, 3, 4, 5};
    for (const float exponent : whole) {
        const float sign = static_cast<int>(exponent) % 2 != 0 ? -1.0f : 1.0f;
        EXPECT_EQ(1 / qz::power(-0.0f, exponent), sign * infinity);
        EXPECT_EQ(qz::power(-infinity, exponent), sign * infinity);
        EXPECT_EQ(qz::power(-2, exponent), sign * std::ldexp(1.0f, static_cast<int>(exponent)));
        EXPECT_EQ(qz::power(-0x1p-140f, exponent), exponent == 1 ? -0x1p-140f : 0);
    }
    for (const float exponent : {0.2f, 0.75f, 2.5f, 5.0f}) {
        EXPECT_EQ(1 / qz::power(0.0f, exponent), infinity);
        EXPECT_EQ(qz::power(infinity, exponent), infinity);
        EXPECT_EQ(qz::power(1, exponent), 1);
        EXPECT_TRUE(std::isnan(qz::power(std::numeric_limits<float>::quiet_NaN(), exponent)));
        EXPECT_EQ(std::isnan(qz::power(-3, exponent)), exponent != 5);
        EXPECT_EQ(qz::power(-infinity, exponent), exponent == 5 ? -infinity : infinity);
        EXPECT_EQ(1 / qz::power(-0.0f, exponent), exponent == 5 ? -infinity : infinity);
    }
    // Among others, wherever in a table they stand.
    for (size_t place = 0; place < 70; ++place) {
        std::vector<float> table(70, 4.0f);
        table[place] = -4.0f;
        table[69 - place] = 0.0f;
        qz::powers(table.data(), table.size(), 2.0f);
        for (size_t i = 0; i < table.size(); ++i)
            ASSERT_EQ(table[i], i == 69 - place ? 0.0f : 16.0f) << place;
    }
}

} // namespace
