// Fixed-point positions of the table resizing routines along one axis.
#pragma once

#include <cstdint>

namespace qz {

// A source point, the weight of it and of the point behind it; the weights add up to 1.0.
struct fixed_neighbours {
    uint32_t left;
    uint32_t left_weight;
    uint32_t right_weight;
};

template <int fraction_bits>
struct fixed_axis {
    static constexpr uint32_t one = 1u << fraction_bits;

    uint32_t step; // between neighbouring output points

    // Counts of 2 and more only, so that there is a step, and a position of at most 31 bits.
    static bool accepts(int32_t src_count, int32_t dst_count)
    {
        return src_count >= 2 && dst_count >= 2 && src_count <= (1 << (31 - fraction_bits));
    }

    fixed_axis(int32_t src_count, int32_t dst_count)
        : step((static_cast<uint32_t>(src_count - 1) << fraction_bits) / static_cast<uint32_t>(dst_count - 1))
    {}

    // A position on a source point takes that point as the right neighbour, so that the last one needs none behind it.
    static fixed_neighbours at(uint32_t position)
    {
        const uint32_t left = position == 0 ? 0 : (position - 1) >> fraction_bits;
        const uint32_t right_weight = position - (left << fraction_bits);
        return {left, one - right_weight, right_weight};
    }
};

} // namespace qz
