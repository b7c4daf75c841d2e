// Between which rows of a gain-indexed table a gain lies.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qz {

struct row_numbers {
    size_t lower;
    size_t upper;
};

// The row with the largest key not above the gain and the one with the smallest key not below it, of equal keys the
// first; outside the table, the nearer end twice. key(row) is the key of a row; there is at least one row.
template <typename Key>
constexpr row_numbers rows_around(int32_t gain, size_t row_count, const Key &key)
{
    row_numbers found = {row_count, row_count}; // none yet
    int32_t lower_key = 0;
    int32_t upper_key = 0;
    for (size_t row = 0; row < row_count; ++row) {
        const int32_t at = key(row);
        if (at <= gain && (found.lower == row_count || at > lower_key)) {
            found.lower = row;
            lower_key = at;
        }
        if (at >= gain && (found.upper == row_count || at < upper_key)) {
            found.upper = row;
            upper_key = at;
        }
    }
    return {found.lower != row_count ? found.lower : found.upper, found.upper != row_count ? found.upper : found.lower};
}

// Whether interpolate_linear() gives at x another value than the line through the two points, for want of bits.
constexpr bool interpolation_wraps(int64_t x0, int64_t x1, int64_t y0, int64_t y1, int64_t x)
{
    constexpr int64_t too_large = int64_t{1} << 31;
    const auto size = [](int64_t value) { return value < 0 ? -value : value; };
    // In double, as a product of differences of 32 bits has more than 64 bits with its sign.
    return x0 != x1 &&
           (size(x1 - x0) >= too_large ||
            static_cast<double>(size(y1 - y0)) * static_cast<double>(size(x - x0)) >= static_cast<double>(too_large));
}

} // namespace qz
