// Picks one source element for each output element.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

#include "util/nearest/row_picker.h"

namespace qz {

// An output row with the source row of the one before it is a copy of that.
template <typename T, typename Rule>
void pick_nearest(const T *src, int32_t src_width, int32_t src_height, T *dst, int32_t dst_width, int32_t dst_height)
{
    using picker = row_picker<std::make_unsigned_t<T>>;
    const Rule across(src_width, dst_width);
    const Rule down(src_height, dst_height);
    const auto in_width = static_cast<size_t>(src_width);
    const auto width = static_cast<size_t>(dst_width);
    const size_t elements = in_width * static_cast<size_t>(src_height);

    for (size_t begin = 0; begin < width; begin += picker::most) {
        const size_t count = std::min(picker::most, width - begin);
        const picker columns(count, [&](size_t i) { return across(static_cast<uint32_t>(begin + i)); });
        uint32_t row_before = UINT32_MAX;
        uint32_t row = down(0);
        for (uint32_t r = 0; r < static_cast<uint32_t>(dst_height); ++r) {
            T *out = dst + r * width + begin;
            const uint32_t next_row = down(r + 1);
            if (row == row_before)
                memcpy(out, out - width, count * sizeof(T));
            else
                columns.pick(src + row * in_width, elements - row * in_width, src + next_row * in_width, out);
            row_before = row;
            row = next_row;
        }
    }
}

} // namespace qz
