// A source row resampled linearly to the columns of a block, and the blend of two such rows. Elements of 8 and of 16
// bits take 16-bit multiply-adds, whose factors are signed: what needs all 16 bits is kept less half of its range.
// Weights have 8 fraction bits there. Every sum is exact.
#pragma once

#include <cstddef>
#include <cstdint>

#include "util/resample/pair_picker.h"
#include "util/resample/table_axis.h"

namespace qz {

template <typename T>
struct linear_row;

template <>
struct linear_row<uint8_t> {
    using picker = pair_picker<uint8_t>;
    static constexpr int32_t one = 256;
    // Half of the range, less what rounds a blend half up.
    static constexpr int32_t offset = 32768 - one / 2;

    struct weights {
        alignas(64) uint16_t right[picker::most];

        void set(size_t column, const fixed_neighbours &n) { right[column] = static_cast<uint16_t>(n.right_weight); }
    };

    alignas(64) int16_t sum[picker::most]; // less offset

    template <int Lanes, int Quads>
    QZ_ALWAYS_INLINE void resample(const picker &columns, const uint8_t *prepared, const weights &all, size_t count)
    {
        using words = vec_of<uint16_t, 2 * Lanes>;
        for (size_t i = 0; i < count; i += size_t{2} * Lanes) {
            byte_vec<Lanes> bytes;
            words pairs, weight;
            columns.pick<Lanes, Quads>(bytes, prepared, i);
            same_bits(pairs, bytes);
            load(weight, all.right + i);
            pairs = (pairs << 8) + ((pairs >> 8) - (pairs & 255)) * weight - static_cast<uint16_t>(offset);
            store(sum + i, pairs);
        }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE static void blend(const linear_row &above, const linear_row &below, const int_vec<Lanes> &weight,
                                       size_t first, byte_vec<Lanes> &out)
    {
        short_vec<Lanes> half[2];
        for (size_t h = 0; h < 2; ++h)
            blend_half<Lanes>(above.sum + first + h * 2 * Lanes, below.sum + first + h * 2 * Lanes, weight, half[h]);
        pack<Lanes>(out, half[0], half[1]);
        order_packed<Lanes>(out);
        out ^= uint8_t{0x80};
    }

  private:
    template <int Lanes>
    QZ_ALWAYS_INLINE static void blend_half(const int16_t *above, const int16_t *below, const int_vec<Lanes> &weight,
                                            short_vec<Lanes> &out)
    {
        short_vec<Lanes> a, b, by, low, high;
        int_vec<Lanes> low_sum, high_sum;
        load(a, above);
        load(b, below);
        same_bits(by, weight);
        interleave<Lanes, false>(low, a, b);
        interleave<Lanes, true>(high, a, b);
        multiply_add<Lanes>(low_sum, low, by);
        multiply_add<Lanes>(high_sum, high, by);
        pack<Lanes>(out, low_sum >> 16, high_sum >> 16);
    }
};

// Sums of 24 bits are kept as two factors.
template <>
struct linear_row<uint16_t> {
    using picker = pair_picker<uint16_t>;
    static constexpr int16_t one = 256;

    struct weights {
        alignas(64) int16_t of_pair[picker::most][2];

        void set(size_t column, const fixed_neighbours &n)
        {
            of_pair[column][0] = static_cast<int16_t>(n.left_weight);
            of_pair[column][1] = static_cast<int16_t>(n.right_weight);
        }
    };

    alignas(64) int16_t high[picker::most]; // bits from 8 on, less half of their range
    alignas(64) int16_t low[picker::most];  // the lower ones, and what rounds a blend half up

    template <int Lanes, int Quads>
    QZ_ALWAYS_INLINE void resample(const picker &columns, const uint16_t *prepared, const weights &all, size_t count)
    {
        for (size_t i = 0; i < count; i += size_t{2} * Lanes) {
            int_vec<Lanes> sum[2];
            for (size_t h = 0; h < 2; ++h) {
                byte_vec<Lanes> bytes;
                short_vec<Lanes> pairs, weight;
                columns.pick<Lanes, Quads>(bytes, prepared, i + h * Lanes);
                same_bits(pairs, bytes);
                pairs ^= INT16_MIN;
                load(weight, all.of_pair[i + h * Lanes]);
                multiply_add<Lanes>(sum[h], pairs, weight);
            }
            short_vec<Lanes> part;
            pack<Lanes>(part, sum[0] >> 8, sum[1] >> 8);
            order_packed<Lanes>(part);
            store(high + i, part);
            pack<Lanes>(part, sum[0] & 255, sum[1] & 255);
            order_packed<Lanes>(part);
            part += int16_t{one / 2};
            store(low + i, part);
        }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE static void blend(const linear_row &above, const linear_row &below, const int_vec<Lanes> &weight,
                                       size_t first, byte_vec<Lanes> &out)
    {
        short_vec<Lanes> high_a, high_b, low_a, low_b, blended;
        load(high_a, above.high + first);
        load(high_b, below.high + first);
        load(low_a, above.low + first);
        load(low_b, below.low + first);
        int_vec<Lanes> sum[2];
        blend_half<Lanes, false>(high_a, high_b, low_a, low_b, weight, sum[0]);
        blend_half<Lanes, true>(high_a, high_b, low_a, low_b, weight, sum[1]);
        pack<Lanes>(blended, sum[0], sum[1]);
        blended ^= INT16_MIN;
        same_bits(out, blended);
    }

  private:
    template <int Lanes, bool Upper>
    QZ_ALWAYS_INLINE static void blend_half(const short_vec<Lanes> &high_a, const short_vec<Lanes> &high_b,
                                            const short_vec<Lanes> &low_a, const short_vec<Lanes> &low_b,
                                            const int_vec<Lanes> &weight, int_vec<Lanes> &out)
    {
        short_vec<Lanes> by, pairs;
        int_vec<Lanes> low_sum;
        same_bits(by, weight);
        interleave<Lanes, Upper>(pairs, low_a, low_b);
        multiply_add<Lanes>(low_sum, pairs, by);
        interleave<Lanes, Upper>(pairs, high_a, high_b);
        multiply_add<Lanes>(out, pairs, by);
        out = (out + (low_sum >> 8)) >> 8;
    }
};

// Sums wrap.
template <>
struct linear_row<uint32_t> {
    using picker = pair_picker<uint32_t>;
    static constexpr int fraction_bits = 12;

    struct weights {
        alignas(64) uint32_t of_pair[picker::most][2];

        void set(size_t column, const fixed_neighbours &n)
        {
            of_pair[column][0] = n.left_weight;
            of_pair[column][1] = n.right_weight;
        }
    };

    alignas(64) uint32_t sum[picker::most];

    template <int Lanes, int Quads>
    QZ_ALWAYS_INLINE void resample(const picker &columns, const uint32_t *prepared, const weights &all, size_t count)
    {
        for (size_t i = 0; i < count; i += Lanes) {
            uint_vec<Lanes> pairs[2];
            for (size_t h = 0; h < 2; ++h) {
                byte_vec<Lanes> bytes;
                uint_vec<Lanes> weight;
                columns.pick<Lanes, Quads>(bytes, prepared, i + h * Lanes / 2);
                same_bits(pairs[h], bytes);
                load(weight, all.of_pair[i + h * Lanes / 2]);
                pairs[h] *= weight;
            }
            uint_vec<Lanes> left, right;
            every_second<0>(left, pairs[0], pairs[1]);
            every_second<1>(right, pairs[0], pairs[1]);
            left += right;
            store(sum + i, left);
        }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE static void blend(const linear_row &above, const linear_row &below, const int_vec<Lanes> &weight,
                                       size_t first, byte_vec<Lanes> &out)
    {
        uint_vec<Lanes> a, b, by;
        load(a, above.sum + first);
        load(b, below.sum + first);
        same_bits(by, weight);
        a = (a * (by & 0xffff) + b * (by >> 16) + (1u << (2 * fraction_bits - 1))) >> (2 * fraction_bits);
        same_bits(out, a);
    }
};

} // namespace qz
