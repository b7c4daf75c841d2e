// Copy of a plane as floats with one extrapolated row and column before it and two after it, so that every 4 x 4
// neighbourhood of a source cell lies inside.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace qz {

inline constexpr uint32_t extended_border = 3;

inline size_t extended_stride(uint32_t width)
{
    return size_t{width} + extended_border;
}

// Floats after the buffer that may be read with its last ones: a vector of any width is loaded from each.
inline constexpr uint32_t extended_tail = 15;

// Bytes of the buffer and of what may be read after it, or more than can be allocated where their number does not fit a
// size_t.
inline size_t extended_size(uint32_t width, uint32_t height)
{
    const uint64_t bytes =
        sizeof(float) * (uint64_t{width + extended_border} * (height + extended_border) + extended_tail);
    return static_cast<size_t>(std::min<uint64_t>(bytes, std::numeric_limits<size_t>::max()));
}

// Writes every sample of the buffer, whatever the plane's size. Sample is uint8_t, uint16_t or float.
template <typename Sample>
void fill_extended(const Sample *src, float *buffer, uint32_t width, uint32_t height);

} // namespace qz
