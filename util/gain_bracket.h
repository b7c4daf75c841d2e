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

} // namespace qz
