// Picks elements of a row by their indices; many rows by the same ones.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#if defined(__x86_64__) && defined(__GNUC__) && !defined(__clang__)
#define QZ_PICKS_BY_SHUFFLE 1
#else
#define QZ_PICKS_BY_SHUFFLE 0
#endif

namespace qz {

// Lane: unsigned integer as wide as a result, which may be wider than a source element.
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
#if QZ_PICKS_BY_SHUFFLE
        if (__builtin_cpu_supports("x86-64-v4") != 0 && !plan(lanes))
            plan(lanes / 2);
#endif
    }

    // From a row of a dense table that has so many elements from there on. The next row is fetched meanwhile.
    template <typename T, typename Out>
    void pick(const T *row, size_t elements, const T *next_row, Out *out) const
    {
        for (size_t i = pick_vectors<false>(row, elements, next_row, out, out); i < count_; ++i)
            out[i] = row[index_[i]];
    }

    // Each element and the one behind it.
    template <typename T, typename Out>
    void pick_pairs(const T *row, size_t elements, Out *left, Out *right) const
    {
        for (size_t i = pick_vectors<true>(row, elements, row, left, right); i < count_; ++i) {
            const T *const pair = row + index_[i];
            left[i] = pair[0];
            right[i] = pair[1];
        }
    }

    // The same times their weights, of which the left element's is 1 less the right one's.
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

#if QZ_PICKS_BY_SHUFFLE
    // Two vectors of a row hold what a vector of results needs, or four when the indices lie further apart, and one
    // instruction picks lanes from two vectors. Compilers make that of no loop, and the gathers they know are slower
    // than scalar loads.
    typedef Lane vector __attribute__((vector_size(64)));
    static constexpr size_t lanes = sizeof(vector) / sizeof(Lane);

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
    __attribute__((target("arch=x86-64-v4"))) static vector load(const T *from)
    {
        if constexpr (sizeof(T) == sizeof(Lane)) {
            vector loaded;
            memcpy(&loaded, from, sizeof loaded);
            return loaded;
        } else {
            typedef T narrow_vector __attribute__((vector_size(lanes * sizeof(T))));
            narrow_vector narrow;
            memcpy(&narrow, from, sizeof narrow);
            return __builtin_convertvector(narrow, vector);
        }
    }

    template <bool pairs, typename T, typename Out, typename... Weights>
    __attribute__((target("arch=x86-64-v4"))) size_t shuffle(const T *row, const T *next_row, Out *left, Out *right,
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
            memcpy(&lane, &lane_[i], sizeof lane);
            const T *from = row + *base++;
            vector low = load(from);
            vector high = load(from + lanes);
            vector picked = __builtin_shuffle(low, high, lane);
            vector behind = __builtin_shuffle(low, high, lane + 1);
            if (group_ != lanes) {
                from = row + *base++;
                low = load(from);
                high = load(from + lanes);
                picked = in_first_half ? picked : __builtin_shuffle(low, high, lane);
                behind = in_first_half ? behind : __builtin_shuffle(low, high, lane + 1);
            }
            if constexpr (sizeof...(Weights) != 0) {
                typedef float floats __attribute__((vector_size(64)));
                floats weight;
                memcpy(&weight, (right_weight, ...) + i, sizeof weight);
                picked = (vector)((floats)picked * (1.0f - weight));
                behind = (vector)((floats)behind * weight);
            }
            memcpy(left + i, &picked, sizeof picked);
            if constexpr (pairs)
                memcpy(right + i, &behind, sizeof behind);
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
