// Powers of floats with the same bits on every target and at every vector width.
#pragma once

#include <cstddef>

namespace qz {

// Replaces each of count values by its power, correctly rounded, for exponents of 0.2 to 5. Special cases are the C
// library's: zeros and infinities stay, with the sign of the power of -1; negative numbers have powers with integer
// exponents only, other powers of theirs are NaN.
void powers(float *values, size_t count, float exponent);

inline float power(float base, float exponent)
{
    powers(&base, 1, exponent);
    return base;
}

} // namespace qz
