// Matrices of floats addressed with byte strides. Strides may be any number, so an element may lie unaligned.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qz {

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

    matrix_view transposed() const { return {data, column_stride, row_stride}; }
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

} // namespace qz
