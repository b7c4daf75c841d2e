// Picks pairs of neighbours from rows of elements; from many rows by the same indices.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "util/simd/narrow_integers.h"

namespace qz {

template <typename T>
class pair_picker {
  public:
    static constexpr size_t most = 1024; // pairs: half a row of full HD

    // Takes count indices of left elements, which never fall, from index_at(i). Rows have this width.
    template <typename IndexAt>
    pair_picker(size_t width, size_t count, IndexAt index_at) : width_(width), padded_(count)
    {
        for (size_t i = 0; i < count; ++i)
            index_[i] = index_at(i);
        // Whole vectors of results, of any width: the last pair is repeated.
        for (; padded_ % (64 / sizeof(T)) != 0; ++padded_)
            index_[padded_] = index_[count - 1];
    }

    // With those that are repeated.
    size_t padded_count() const { return padded_; }

    // How pairs are picked: 1 or 2 for as many quads of a row as the pairs of a quad come from, 0 for one by one.
    int plan() { return plan_quads(1) ? 1 : plan_quads(2) ? 2 : 0; }

    // What vectors of pairs are taken from: the row itself, or a copy of it or of its pairs.
    struct buffer {
        alignas(64) T elements[2 * most];
    };

    template <int Quads>
    QZ_ALWAYS_INLINE const T *prepare(const T *row, buffer &copy) const
    {
        if constexpr (Quads == 0) {
            for (size_t i = 0; i < padded_; ++i)
                memcpy(copy.elements + 2 * i, row + index_[i], 2 * sizeof(T));
            return copy.elements;
        }
        if (width_ >= Quads * quad_elements)
            return row;
        std::copy_n(row, width_, copy.elements);
        return copy.elements;
    }

    // As many pairs as a vector holds.
    template <int Lanes, int Quads>
    QZ_ALWAYS_INLINE void pick(byte_vec<Lanes> &pairs, const T *prepared, size_t first) const
    {
        if constexpr (Quads == 0) {
            load(pairs, prepared + 2 * first);
            return;
        }
        byte_vec<Lanes> choice;
        const uint32_t *base = base_.data() + first / quad_pairs;
        load_quads(pairs, prepared, base);
        load(choice, choice_[0].data() + first * 2 * sizeof(T));
        pick_bytes<Lanes>(pairs, choice);
        if constexpr (Quads == 2) {
            byte_vec<Lanes> more;
            load_quads(more, prepared + quad_elements, base);
            load(choice, choice_[1].data() + first * 2 * sizeof(T));
            pick_bytes<Lanes>(more, choice);
            pairs |= more;
        }
    }

  private:
    static constexpr size_t quad_pairs = 16 / (2 * sizeof(T));
    static constexpr size_t quad_elements = 16 / sizeof(T);
    static constexpr size_t none = 0x80; // chooses no byte

    // False if pairs lie too far from each other.
    bool plan_quads(size_t quads)
    {
        const size_t reach = quads * quad_elements;
        const size_t last_base = std::max(width_, reach) - reach;
        for (size_t i = 0; i < padded_; i += quad_pairs) {
            const size_t base = std::min<size_t>(index_[i], last_base);
            if (index_[i + quad_pairs - 1] + 1 - base >= reach)
                return false;
            base_[i / quad_pairs] = static_cast<uint32_t>(base);
            for (size_t k = i; k < i + quad_pairs; ++k)
                choose(k, (index_[k] - base) * sizeof(T));
        }
        return true;
    }

    // The bytes of a pair; those of the other quad are left out.
    void choose(size_t k, size_t first_byte)
    {
        for (size_t b = 0; b < 2 * sizeof(T); ++b) {
            const size_t from = first_byte + b;
            choice_[0][2 * sizeof(T) * k + b] = static_cast<uint8_t>(from < 16 ? from : none);
            choice_[1][2 * sizeof(T) * k + b] = static_cast<uint8_t>(from < 16 ? none : from - 16);
        }
    }

    size_t width_, padded_;
    std::array<uint32_t, most> index_;
    std::array<uint32_t, most / quad_pairs> base_;
    alignas(64) std::array<uint8_t, most * 2 * sizeof(T)> choice_[2];
};

} // namespace qz
