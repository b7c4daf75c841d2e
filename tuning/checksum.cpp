#include "qz_isp/checksum.h"

#include <cstring>

#include "util/simd/vectors.h"

namespace {

// How far ahead of the sum memory is asked for: on the next page already, where the processor by itself does not go.
constexpr uint32_t ahead = 4096;
constexpr uint32_t cache_line = 64;
constexpr uint32_t word_size = sizeof(uint32_t);

struct sum_of_words {
    const unsigned char *data;
    uint32_t size;
    uint32_t *result;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        constexpr uint32_t step = sums * Lanes * word_size;
        qz::uint_vec<Lanes> sum[sums] = {};
        const unsigned char *at = data;
        uint32_t left = size;
        for (; left >= ahead + step; left -= step, at += step) {
            for (uint32_t line = 0; line < step; line += cache_line)
                __builtin_prefetch(at + ahead + line);
            add<Lanes>(sum, at);
        }
        for (; left >= step; left -= step, at += step)
            add<Lanes>(sum, at);
        *result = total<Lanes>(sum) + one_by_one(at, left);
    }

    // Several sums, so that the next addition need not wait for the last.
    static constexpr int sums = 4;

    template <int Lanes>
    QZ_ALWAYS_INLINE static void add(qz::uint_vec<Lanes> (&sum)[sums], const unsigned char *at)
    {
        for (auto &one : sum) {
            qz::uint_vec<Lanes> words;
            memcpy(&words, at, sizeof words);
            one += words;
            at += sizeof words;
        }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE static uint32_t total(const qz::uint_vec<Lanes> (&sum)[sums])
    {
        const qz::uint_vec<Lanes> lanes = sum[0] + sum[1] + sum[2] + sum[3];
        uint32_t all = 0;
        for (int lane = 0; lane < Lanes; ++lane)
            all += lanes[lane];
        return all;
    }

    QZ_ALWAYS_INLINE static uint32_t one_by_one(const unsigned char *at, uint32_t left)
    {
        uint32_t all = 0;
        for (; left >= word_size; left -= word_size, at += word_size) {
            uint32_t word;
            memcpy(&word, at, sizeof word);
            all += word;
        }
        return all;
    }
};

} // namespace

uint32_t get_checksum(const void *data, uint32_t size)
{
    uint32_t result = 0;
    qz::run_widest(sum_of_words{static_cast<const unsigned char *>(data), size, &result});
    return result;
}
