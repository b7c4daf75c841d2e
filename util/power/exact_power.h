// x^g in a precision that leaves no doubt about its rounding.
#pragma once

#include <cstdint>

namespace qz {

// A number in two doubles: low is at most half a unit of high's last place.
struct two_doubles {
    double high;
    double low;
};

// A power as 2^scale * value, value from 0.7 to 1.5.
struct wide_power {
    two_doubles value;
    int32_t scale;
};

// base^exponent within 2^-90 of its value, for a positive finite base and an exponent of 0.2 to 5.
wide_power power_in_two_doubles(float base, float exponent);

// base^exponent correctly rounded for any base and exponents of 0.2 to 5; special cases as in the C library's powf: of
// negative numbers only the powers with an integer exponent are not NaN.
float exact_power(float base, float exponent);

} // namespace qz
