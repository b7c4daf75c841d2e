// Picks elements of a row by their indices; many rows by the same ones.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "util/simd/vectors.h"

namespace qz {

// Lane: unsigned integer as wide as a result, which may be wider than a source element. At most so many indices are
// taken at once.
template <typename Lane>
class row_picker {
  public:
    static constexpr size_t most = 2048; // indices: a row of full HD at once

    // Takes count indices, which never fall, from index_at(i).
    template <typename IndexAt>
    row_picker(size_t count, IndexAt index_at) : count_(count)
    {
        for (size_t i = 0; i < count; ++i)
            index_[i] = index_at(i);
#if QZ_WIDER_VECTORS
        if (qz_vector_bits() == 512 && !plan(lanes))
            plan(lanes / 2);
#endif
    }

    // From a row of a dense table. The table has so many elements from the row's first on: vectors may reach beyond the
    // row, not beyond the table. What is picked from the next row is fetched into the cache meanwhile.
    template <typename T, typename Out>
    void pick(const T *row, size_t elements, const T *next_row, Out *out) const
    {
        for (size_t i = pick_vectors<false>(row, elements, next_row, out, out); i < count_; ++i)
            out[i] = row[index_[i]];
    }

    // Each element and the one behind it, times their weights, of which the left one's is 1 less the right one's.
    void pick_weighted_pairs(const float *row, size_t elements, const float *right_weight, float *left,
                             float *right) const
    {
        for (size_t i = pick_vectors<true>(row, elements, row, left, right, right_weight); i < count_; ++i) {
            const float *const pair = row + index_[i];
            left[i] = pair[0] * (1.0f - right_weight[i]);
            right[i] = pair[1] * right_weight[i];
        }
    }

  private:
    size_t count_;
    std::array<uint32_t, most> index_;

#if QZ_WIDER_VECTORS
    // Two vectors of a row hold what a vector of results needs, or four when the indices lie further apart, and one
    // instruction picks lanes from two vectors. Compilers make that of no loop, and the gathers they know are slower
    // than scalar loads.
    static constexpr size_t lanes = 64 / sizeof(Lane);
    using vector = vec_of<Lane, lanes>;

    size_t group_ = lanes;    // results from the same two vectors
    size_t reach_ = SIZE_MAX; // elements read of a row
    std::array<uint32_t, most / (lanes / 2)> base_;
    alignas(64) std::array<Lane, most> lane_;

    // False if a group's results do not lie within two vectors.
    bool plan(size_t group)
    {
        size_t reach = 0;
        for (size_t i = 0; i < count_; i += group) {
            const size_t end = std::min(i + group, count_);
            const uint32_t base = index_[i];
            if (index_[end - 1] + 1 - base >= 2 * lanes)
                return false;
            for (size_t k = i; k < end; ++k)
                lane_[k] = static_cast<Lane>(index_[k] - base);
            base_[i / group] = base;
            reach = base + 2 * lanes;
        }
        group_ = group;
        reach_ = reach;
        return true;
    }

    // Returns how many results it picked.
    template <bool pairs, typename T, typename Out, typename... Weights>
    size_t pick_vectors(const T *row, size_t elements, const T *next_row, Out *left, Out *right,
                        Weights... right_weight) const
    {
        return elements >= reach_ ? shuffle<pairs>(row, next_row, left, right, right_weight...) : 0;
    }

    template <typename T>
    QZ_ALWAYS_INLINE static void load_lanes(vector &v, const T *from)
    {
        if constexpr (sizeof(T) == sizeof(Lane))
            load(v, from);
        else
            load_converted(v, from);
    }

    template <bool pairs, typename T, typename Out, typename... Weights>
    [[gnu::target("arch=x86-64-v4")]] size_t shuffle(const T *row, const T *next_row, Out *left, Out *right,
                                                     Weights... right_weight) const
    {
        static_assert(sizeof(Out) == sizeof(Lane));
        vector place;
        for (size_t k = 0; k < lanes; ++k)
            place[k] = static_cast<Lane>(k);
        const auto in_first_half = place < lanes / 2;

        const uint32_t *base = base_.data();
        size_t i = 0;
        for (; i + lanes <= count_; i += lanes) {
            if constexpr (!pairs)
                for (const size_t k : {i, i + lanes / 3, i + lanes * 2 / 3, i + lanes - 1})
                    __builtin_prefetch(next_row + index_[k]);
            vector lane;
            load(lane, &lane_[i]);
            const T *from = row + *base++;
            vector low;
            vector high;
            load_lanes(low, from);
            load_lanes(high, from + lanes);
            vector picked = __builtin_shuffle(low, high, lane);
            vector behind = __builtin_shuffle(low, high, lane + 1);
            if (group_ != lanes) {
                from = row + *base++;
                load_lanes(low, from);
                load_lanes(high, from + lanes);
                picked = in_first_half ? picked : __builtin_shuffle(low, high, lane);
                behind = in_first_half ? behind : __builtin_shuffle(low, high, lane + 1);
            }
            if constexpr (sizeof...(Weights) != 0) {
                vec<lanes> weight;
                load(weight, (right_weight, ...) + i);
                picked = (vector)((vec<lanes>)picked * (1.0f - weight));
                behind = (vector)((vec<lanes>)behind * weight);
            }
            store(left + i, picked);
            if constexpr (pairs)
                store(right + i, behind);
        }
        return i;
    }
#else
    template <bool pairs, typename T, typename Out, typename... Weights>
    size_t pick_vectors(const T * /*row*/, size_t /*elements*/, const T * /*next_row*/, Out * /*left*/, Out * /*right*/,
                        Weights... /*right_weight*/) const
    {
        return 0;
    }
#endif
};

} // namespace qz
