// Picks one source element for each output element.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qz {

// Works on blocks of columns, whose source indices are kept. An output row with the source row of the one before it is
// a copy of that.
template <typename T, typename Rule>
void pick_nearest(const T *src, int32_t src_width, int32_t src_height, T *dst, int32_t dst_width, int32_t dst_height)
{
    constexpr size_t block = 2048;
    const Rule across(src_width, dst_width);
    const Rule down(src_height, dst_height);
    const auto width = static_cast<size_t>(dst_width);
    std::array<uint32_t, block> columns;

    for (size_t begin = 0; begin < width; begin += block) {
        const size_t count = std::min(block, width - begin);
        for (size_t i = 0; i < count; ++i)
            columns[i] = across(static_cast<uint32_t>(begin + i));

        T *out = dst + begin;
        uint32_t row_before = UINT32_MAX;
        for (uint32_t r = 0; r < static_cast<uint32_t>(dst_height); ++r, out += width) {
            const uint32_t row = down(r);
            const T *in = src + static_cast<size_t>(row) * static_cast<size_t>(src_width);
            if (row == row_before) {
                memcpy(out, out - width, count * sizeof(T));
            } else {
                for (size_t i = 0; i < count; ++i)
                    out[i] = in[columns[i]];
            }
            row_before = row;
        }
    }
}

} // namespace qz
