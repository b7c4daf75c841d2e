// Matrices of floats addressed with byte strides. Strides may be any number, so an element may lie unaligned.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace qz {

struct byte_range {
    uintptr_t begin, end;
};

template <typename Byte>
struct matrix_view {
    Byte *data;
    ptrdiff_t row_stride;
    ptrdiff_t column_stride;

    // Offsets are formed in wrapping arithmetic: a partial product may exceed what a 32-bit offset holds.
    Byte *at(ptrdiff_t row, ptrdiff_t column) const
    {
        return data + static_cast<ptrdiff_t>(static_cast<size_t>(row) * static_cast<size_t>(row_stride) +
                                             static_cast<size_t>(column) * static_cast<size_t>(column_stride));
    }

    matrix_view from(ptrdiff_t row, ptrdiff_t column) const { return {at(row, column), row_stride, column_stride}; }

    operator matrix_view<const Byte>() const requires(!std::is_const_v<Byte>)
    {
        return {data, row_stride, column_stride};
    }

    matrix_view transposed() const { return {data, column_stride, row_stride}; }

    // From the first to the last byte of all elements; at least one row and column.
    byte_range range(ptrdiff_t rows, ptrdiff_t columns) const
    {
        const auto at_corner =
            reinterpret_cast<uintptr_t>(at(row_stride < 0 ? rows - 1 : 0, column_stride < 0 ? columns - 1 : 0));
        const auto at_other =
            reinterpret_cast<uintptr_t>(at(row_stride < 0 ? 0 : rows - 1, column_stride < 0 ? 0 : columns - 1));
        return {at_corner, at_other + sizeof(float)};
    }
};

using source_view = matrix_view<const unsigned char>;
using target_view = matrix_view<unsigned char>;

inline source_view source(const void *data, int32_t row_stride, int32_t column_stride)
{
    return {static_cast<const unsigned char *>(data), row_stride, column_stride};
}

inline target_view target(void *data, int32_t row_stride, int32_t column_stride)
{
    return {static_cast<unsigned char *>(data), row_stride, column_stride};
}

inline float load_float(const unsigned char *at)
{
    float value;
    memcpy(&value, at, sizeof value);
    return value;
}

inline void store_float(unsigned char *at, float value)
{
    memcpy(at, &value, sizeof value);
}

// Whether no two elements of a view share a byte. Views that interleave rows and columns may be taken for ones that do.
inline bool apart(const source_view &view, int32_t rows, int32_t columns)
{
    const int64_t down = std::abs(static_cast<int64_t>(view.row_stride));
    const int64_t right = std::abs(static_cast<int64_t>(view.column_stride));
    constexpr int64_t element = sizeof(float);
    const bool rows_apart = rows <= 1 || down >= element;
    const bool columns_apart = columns <= 1 || right >= element;
    const bool row_fits = rows <= 1 || down >= right * (columns - 1) + element;
    const bool column_fits = columns <= 1 || right >= down * (rows - 1) + element;
    return rows_apart && columns_apart && (row_fits || column_fits);
}

// Whether the bytes from the first to the last of two views have any in common.
inline bool touch(const source_view &a, int32_t a_rows, int32_t a_columns, const source_view &b, int32_t b_rows,
                  int32_t b_columns)
{
    const byte_range first = a.range(a_rows, a_columns);
    const byte_range second = b.range(b_rows, b_columns);
    return first.begin < second.end && second.begin < first.end;
}

} // namespace qz
