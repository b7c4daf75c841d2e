#include "util/power/exact_power.h"

#include <bit>
#include <cmath>
#include <limits>

#include "util/power/power_constants.h"
#include "util/power/power_estimate.h"

namespace qz {
namespace {

two_doubles exact_sum(double a, double b)
{
    const double sum = a + b;
    const double part_of_b = sum - a;
    return {sum, (a - (sum - part_of_b)) + (b - part_of_b)};
}

// Where a is the larger one, or 0.
two_doubles normalised(double a, double b)
{
    const double sum = a + b;
    return {sum, b - (sum - a)};
}

// The upper and lower half of a double's digits.
two_doubles halves(double a)
{
    const double shifted = a * 134217729.0; // 2^27 + 1
    const double upper = shifted - (shifted - a);
    return {upper, a - upper};
}

two_doubles exact_product(double a, double b)
{
    const double product = a * b;
    const two_doubles x = halves(a);
    const two_doubles y = halves(b);
    return {product, ((x.high * y.high - product) + x.high * y.low + x.low * y.high) + x.low * y.low};
}

two_doubles operator+(two_doubles a, two_doubles b)
{
    const two_doubles high = exact_sum(a.high, b.high);
    const two_doubles low = exact_sum(a.low, b.low);
    const two_doubles sum = normalised(high.high, high.low + low.high);
    return normalised(sum.high, sum.low + low.low);
}

two_doubles operator*(two_doubles a, two_doubles b)
{
    const two_doubles product = exact_product(a.high, b.high);
    return normalised(product.high, product.low + (a.high * b.low + a.low * b.high));
}

two_doubles operator/(two_doubles a, int divisor)
{
    const double quotient = a.high / divisor;
    const two_doubles back = exact_product(quotient, divisor);
    return normalised(quotient, (((a.high - back.high) - back.low) + a.low) / divisor);
}

// log2(1 + r) for |r| < 0.03: the terms left out add up to less than 2^-120.
two_doubles log2_of_1_plus(double r)
{
    constexpr int terms = 22;
    two_doubles sum = {0.0, 0.0};
    for (int n = terms; n >= 1; --n)
        sum = two_doubles{n % 2 != 0 ? 1.0 : -1.0, 0.0} / n + sum * two_doubles{r, 0.0};
    constexpr auto &scale = power_constants::log2_of_e;
    return sum * two_doubles{r, 0.0} * two_doubles{scale[0], scale[1]};
}

// 2^f for |f| <= 0.5: the terms left out add up to less than 2^-120.
two_doubles power_of_2(two_doubles f)
{
    constexpr int terms = 27;
    constexpr auto &scale = power_constants::log_of_2;
    const two_doubles x = f * two_doubles{scale[0], scale[1]};
    two_doubles sum = {1.0, 0.0};
    for (int n = terms; n >= 1; --n)
        sum = two_doubles{1.0, 0.0} + sum * x / n;
    return sum;
}

bool is_odd_integer(float value)
{
    return value == std::floor(value) && static_cast<int32_t>(value) % 2 != 0;
}

// To the nearest float, halves to even, whatever the float's precision at its size is.
float rounded(const wide_power &power)
{
    // A rest that is nothing but the error of the calculation stands for 0: the power is a double.
    constexpr double nothing = 0x1p-85;
    auto bits = std::bit_cast<uint64_t>(power.value.high);
    if (std::fabs(power.value.low) > nothing && bits % 2 == 0)
        bits = power.value.low > 0.0 ? bits + 1 : bits - 1; // an odd last place tells the next rounding of a rest
    return static_cast<float>(std::bit_cast<double>(bits + (static_cast<uint64_t>(power.scale) << 52)));
}

} // namespace

wide_power power_in_two_doubles(float base, float exponent)
{
    const bool subnormal = base < std::numeric_limits<float>::min();
    const power_base parts = split_base(std::bit_cast<uint32_t>(subnormal ? base * 0x1p24f : base));
    const double k = parts.exponent - (subnormal ? 24 : 0);
    const double r = static_cast<double>(parts.z) * power_constants::inverses[parts.interval] - 1.0; // exact

    const two_doubles log =
        two_doubles{k, 0.0} +
        two_doubles{power_constants::logs[parts.interval], power_constants::logs_low[parts.interval]} +
        log2_of_1_plus(r);
    const two_doubles power = log * two_doubles{exponent, 0.0};
    const double scale = std::floor(power.high + 0.5);
    return {.value = power_of_2(power + two_doubles{-scale, 0.0}), .scale = static_cast<int32_t>(scale)};
}

float exact_power(float base, float exponent)
{
    if (base > 0.0f && base <= std::numeric_limits<float>::max())
        return rounded(power_in_two_doubles(base, exponent));
    const float sign = std::signbit(base) && is_odd_integer(exponent) ? -1.0f : 1.0f;
    if (base == 0.0f || std::isinf(base))
        return std::copysign(base, sign);
    if (base < 0.0f && exponent == std::floor(exponent))
        return sign * rounded(power_in_two_doubles(-base, exponent));
    return (base - base) / (base - base); // NaN
}

} // namespace qz
