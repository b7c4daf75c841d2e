#include "util/nearest/nearest_maximum.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

#include "util/nearest/nearest_index.h"
#include "util/simd/dispatch.h"

namespace qz {

namespace {

constexpr size_t most_outputs = 1024;
constexpr size_t most_sources = 4096;

// Source elements begin to end, none when both are the same.
struct span {
    uint32_t begin;
    uint32_t end;
};

class block_axis {
  public:
    block_axis(uint16_t src_size, uint16_t dst_size) : rule_(src_size, dst_size) {}

    span operator[](size_t output) const
    {
        const auto k = static_cast<uint32_t>(output);
        return {k == 0 ? 0 : rule_(k - 1) + 1, rule_(k) + 1};
    }

  private:
    ceiling_rule rule_;
};

// The largest element of each column over some rows, or 0.
QZ_ALWAYS_INLINE void column_maxima(const int32_t *src, size_t stride, size_t rows, size_t columns,
                                    int32_t *__restrict peaks)
{
    for (size_t i = 0; i < columns; ++i)
        peaks[i] = std::max(src[i], 0);
    for (size_t r = 1; r < rows; ++r) {
        src += stride;
        for (size_t i = 0; i < columns; ++i)
            peaks[i] = std::max(peaks[i], src[i]);
    }
}

// The largest element of rows of any width, or 0.
QZ_ALWAYS_INLINE int32_t block_maximum(const int32_t *src, size_t stride, size_t rows, size_t columns)
{
    int32_t peak = 0;
    for (size_t r = 0; r < rows; ++r, src += stride)
        for (size_t i = 0; i < columns; ++i)
            peak = std::max(peak, src[i]);
    return peak;
}

// Turns peaks into the maxima of as many neighbours, beginning with the element itself; those at the end stay short.
QZ_ALWAYS_INLINE void widen(int32_t *peaks, size_t count, size_t width)
{
    for (size_t reach = 1; reach < width;) {
        const size_t shift = std::min(reach, width - reach);
        for (size_t i = 0; i + shift < count; ++i)
            peaks[i] = std::max(peaks[i], peaks[i + shift]);
        reach += shift;
    }
}

// Neighbouring outputs of a row, each the maximum of a block of columns. Blocks differ in width, so first the maxima of
// all windows as wide as the shortest block are formed. Any block is covered by a window at its begin, one at its end,
// and where it is more than twice as wide, further ones between these; they may overlap, a maximum does not mind.
class tile {
  public:
    // As many outputs from the first as fit; more than most_sources columns only if the first needs them alone.
    tile(const block_axis &across, size_t first, size_t dst_width) : first_(first), columns_(across[first])
    {
        const size_t most = std::min(most_outputs, dst_width - first);
        for (; count_ < most; ++count_) {
            const span s = across[first + count_];
            if (count_ > 0 && s.end - columns_.begin > most_sources)
                break;
            blocks_[count_] = {s.begin - columns_.begin, s.end - columns_.begin};
            columns_.end = s.end;
            longest_ = std::max(longest_, s.end - s.begin);
            if (s.end != s.begin)
                shortest_ = std::min(shortest_, s.end - s.begin);
        }
        peaks_[most_sources] = 0;
        for (size_t i = 0; i < count_; ++i) {
            span &b = blocks_[i];
            b = b.begin == b.end ? span{most_sources, most_sources} : span{b.begin, b.end - shortest_};
        }
    }

    size_t count() const { return count_; }

    void row(const int32_t *src, size_t stride, size_t rows, int32_t *dst)
    {
        dst += first_;
        if (rows == 0) {
            memset(dst, 0, count_ * sizeof *dst);
            return;
        }
        src += columns_.begin;
        const size_t columns = columns_.end - columns_.begin;
        if (columns > most_sources) {
            *dst = run_loop<block_maximum>(src, stride, rows, columns);
        } else {
            run_loop<column_maxima>(src, stride, rows, columns, peaks_.data());
            run_loop<widen>(peaks_.data(), columns, shortest_);
            for (size_t i = 0; i < count_; ++i)
                dst[i] = std::max(peaks_[blocks_[i].begin], peaks_[blocks_[i].end]);
            for (uint32_t offset = shortest_; offset + shortest_ < longest_; offset += shortest_)
                for (size_t i = 0; i < count_; ++i)
                    dst[i] = std::max(dst[i], peaks_[std::min(blocks_[i].begin + offset, blocks_[i].end)]);
        }
    }

  private:
    alignas(64) std::array<int32_t, most_sources + 1> peaks_;
    std::array<span, most_outputs> blocks_; // places of the first and the last window; a 0 for an empty block
    size_t first_;
    size_t count_ = 0;
    span columns_;
    uint32_t shortest_ = most_sources, longest_ = 0; // block widths, empty ones left out
};

} // namespace

void block_maxima(const int32_t *src, int32_t *dst, const scaling &size)
{
    const block_axis across(size.src_width, size.dst_width);
    const block_axis down(size.src_height, size.dst_height);
    for (size_t first = 0; first < size.dst_width;) {
        tile outputs(across, first, size.dst_width);
        for (size_t r = 0; r < size.dst_height; ++r) {
            const span rows = down[r];
            outputs.row(src + static_cast<size_t>(rows.begin) * size.src_width, size.src_width, rows.end - rows.begin,
                        dst + r * size.dst_width);
        }
        first += outputs.count();
    }
}

} // namespace qz
