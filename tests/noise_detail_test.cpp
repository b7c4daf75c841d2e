#include <cstdint>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/noise_detail.h"

namespace {

using values = std::vector<int>;

constexpr int kept = 0x5A5A; // what every field holds before the call

// A record and its rows of 16-bit words, each with its key first.
struct record {
    record(size_t row_count, const values &rows) : words(5)
    {
        words.insert(words.end(), rows.begin(), rows.end());
        words[4] = static_cast<uint16_t>(row_count);
        slot = {reinterpret_cast<isp_record *>(words.data()), words.data() + 5};
    }
    std::vector<uint16_t> words;
    isp_table_slot slot;
};

template <auto compute, typename Field, size_t... k>
values with_pointers(uint16_t gain, const isp_table_slot &slot, int8_t strength)
{
    Field out[] = {(static_cast<void>(k), static_cast<Field>(kept))...};
    if constexpr (std::is_invocable_v<decltype(compute), uint16_t, const isp_table_slot *, int8_t,
                                      decltype(&out[k])...>)
        compute(gain, &slot, strength, &out[k]...);
    else if constexpr (std::is_invocable_v<decltype(compute), uint16_t, const isp_table_slot *, decltype(&out[k])...>)
        compute(gain, &slot, &out[k]...);
    else
        compute(gain, strength, &slot, &out[k]...);
    return {static_cast<int>(out[k])...};
}

template <bool in_bytes>
values with_chroma_slot(uint16_t gain, const isp_table_slot &slot, int8_t strength)
{
    std::vector<uint16_t> out(8, kept);
    const isp_chroma_nr_slot chroma_slot = {slot.record, in_bytes ? slot.data : nullptr, slot.data};
    compute_chroma_nr(gain, &chroma_slot, strength, out.data());
    return {out.begin(), out.end()};
}

using block = values (*)(uint16_t gain, const isp_table_slot &slot, int8_t strength);
constexpr block defect_pixel = with_pointers<compute_defect_pixel_correction, uint32_t, 0, 1>;
constexpr block noise = with_pointers<compute_noise_reduction, uint32_t, 0, 1, 2, 3, 4>;
constexpr block temporal = with_pointers<compute_temporal_noise_reduction, uint32_t, 0, 1, 2>;
constexpr block xnr = with_pointers<compute_xnr, uint32_t, 0>;
constexpr block edge = with_pointers<compute_edge_enhancement, uint32_t, 0, 1, 2>;
constexpr block y_edge = with_pointers<compute_y_edge_enhancement, uint16_t, 0, 1, 2, 3>;
constexpr block chroma = with_chroma_slot<false>;
constexpr block chroma_bytes = with_chroma_slot<true>;
constexpr std::pair<block, int> blocks[] = {{defect_pixel, 2}, {noise, 5},  {temporal, 3}, {xnr, 1},
                                            {edge, 3},         {y_edge, 4}, {chroma, 8}};

// The exponent and fields 0 to 11.
values fringe(uint16_t gain, const isp_table_slot &slot, uintptr_t base, const void *extra, int8_t sharpness)
{
    std::vector<int16_t> out(13, kept);
    const isp_fringe_control_slot all = {slot.record, slot.data, base, extra};
    compute_fringe_control(gain, &all, sharpness, reinterpret_cast<aic_fringe_control *>(out.data()));
    if (out[0] != kept)
        out[0] = static_cast<int16_t>(out[0] - 0x5A00); // the unused byte stays as it was
    return {out.begin(), out.end()};
}

TEST(gain_rows, bracket_the_gain_by_unsigned_keys_in_any_order)
{
    constexpr std::pair<uint16_t, int> value_at[] = {{0, 100},   {255, 100},   {256, 100},    {320, 150},   {384, 200},
                                                     {512, 300}, {20256, 650}, {40000, 1000}, {65535, 1000}};
    for (const auto &[compute, columns] : blocks) {
        values rows;
        // The second row of key 256 is never taken.
        for (const auto &[key, value] : {std::pair{40000, 1000}, {256, 100}, {512, 300}, {256, 5000}}) {
            rows.push_back(key);
            for (int k = 0; k < columns; ++k)
                rows.push_back(value + k);
        }
        for (const auto &[gain, value] : value_at) {
            values expected;
            for (int k = 0; k < columns; ++k)
                expected.push_back(value + k);
            EXPECT_EQ(compute(gain, record(4, rows).slot, 0), expected) << "gain " << gain;
        }
    }
    // 40000 * 65535 wraps, 2^32 too much for the span: 40000 - 2^32 / 65535 = -25537.
    EXPECT_EQ(xnr(40000, record(2, {0, 0, 65535, 65535}).slot, 0), (values{-25537}));
    EXPECT_EQ(edge(40000, record(2, {0, 0, 0, 0, 65535, 65535, 65535, 65535}).slot, 0), values(3, -25537));
}

TEST(gain_rows, missing_leave_every_field)
{
    record no_rows(0, {});
    record one_row(1, values(9));
    for (const isp_table_slot &slot : {no_rows.slot, {nullptr, nullptr}, {one_row.slot.record, nullptr}}) {
        for (const auto &[compute, columns] : blocks)
            EXPECT_EQ(compute(256, slot, 50), values(static_cast<size_t>(columns), kept));
        EXPECT_EQ(chroma_bytes(256, slot, 50), values(8, kept));
        EXPECT_EQ(fringe(256, slot, 1, nullptr, 50), values(13, kept));
    }
}

TEST(defect_pixel_correction, writes_parameter_1_first)
{
    uint32_t both = 0;
    const record table(1, {256, 100, 50});
    compute_defect_pixel_correction(256, &table.slot, &both, &both);
    EXPECT_EQ(both, 100u);
}

TEST(strength, scales_and_limits_each_block_its_own_way)
{
    struct {
        block compute;
        int8_t strength;
        values row, expected;
    } const cases[] = {
        {noise, 127, {0, 14336, 1000, 65535, 128, 64}, {65535, 5000, 65535, 128, 64}},
        {noise, -128, {0, 14336, 1000, 512, 128, 64}, {2867, 200, 512, 128, 64}},
        {noise, 1, {0, 1000, 1270, 9, 8, 7}, {1031, 1310, 9, 8, 7}}, // 1.0315
        {temporal, 127, {0, 32768, 32, 31}, {163840, 32, 31}},
        {temporal, 1, {0, 32768, 32, 31}, {33800, 32, 31}},
        {temporal, -1, {0, 32768, 32, 31}, {32563, 32, 31}}, // 0.99375
        {edge, 0, {0, 65535, 256, 2049}, {65535, 256, 2049}},
        {edge, 127, {0, 65535, 256, 2048}, {196605, 256, 4096}},
        {edge, -128, {0, 8192, 256, 2048}, {2727, 256, 1024}},
        {edge, 1, {0, 8192, 256, 2048}, {8321, 256, 2064}}, // 129/127 and 128/127
        {y_edge, 0, {0, 9000, 1, 2, 3}, {9000, 1, 2, 3}},
        {y_edge, 127, {0, 1000, 2000, 3, 13200}, {5000, 8191, 15, 66000 - 65536}},
        {y_edge, 1, {0, 1000, 2000, 3, 13200}, {1031, 2062, 3, 8191}},
        {y_edge, -128, {0, 1000, 65535, 5, 4}, {200, 8191, 1, 0}},
        {chroma, 0, {0, 1, 2, 9000, 4, 5, 6, 7, 8}, {1, 2, 9000, 4, 5, 6, 7, 8}},
        {chroma, 127, {0, 9000, 2, 100, 100, 100, 50, 50, 54}, {9000, 2, 20, 20, 20, 10, 10, 10}},
        {chroma, 1, {0, 4, 2, 1000, 0, 0, 0, 0, 1270}, {4, 2, 993, 0, 0, 0, 0, 1262}},
        {chroma, -1, {0, 4, 2, 1000, 0, 0, 0, 0, 1600}, {4, 2, 1031, 0, 0, 0, 0, 1650}}, // 1.03125
        {chroma, -128, {0, 4, 9000, 100, 2000, 13200, 50, 50, 50}, {4, 9000, 500, 8191, 464, 250, 250, 250}},
        {chroma_bytes, -128, {0, 0xFF04, 0x0064, 0xFF64, 0x3232}, {128, 8160, 500, 0, 500, 1275, 250, 250}},
    };
    for (const auto &[compute, strength, row, expected] : cases)
        EXPECT_EQ(compute(256, record(1, row).slot, strength), expected) << "strength " << int{strength};
}

TEST(fringe_control, shares_one_shift)
{
    struct {
        int8_t sharpness;
        uintptr_t base;
        std::vector<uint16_t> extra;
        values rows, expected;
    } const cases[] = {
        {0, 9, {}, {1, 1, 2, 3, 4, 5, 8191, 0, -8191}, {9, kept, kept, kept, kept, 1, 2, 3, 4, 5, 8191, 0, -8191}},
        // The magnitude of a negative field counts, and its shift keeps the sign.
        {0, 7, {8191, 1, 2, 3}, {1, 1, 2, 3, 4, 5, 6, -8192, -3}, {8, 4095, 0, 1, 1, 0, 1, 1, 2, 2, 3, -4096, -2}},
        {0, 0x1FF, {0, 4, 8, 9}, {1, 20000, 4, 8, 12, 16, 20, 24, -9}, {1, 0, 1, 2, 2, 5000, 1, 2, 3, 4, 5, 0, -3}},
        {127, 1, {9, 9, 9, 9}, {1, 0, 1, 9, 9, 80, 88, 0, 0}, {4, 1, 1, 1, 1, 8191, 8191, 8191, 8191, 10, 11, 0, 0}},
        {-128, 1, {9, 9, 9, 9}, {1, 0, 1, 9, 65535, 80, 88, 0, 0}, {1, 9, 9, 9, 9, 0, 0, 0, 0, 80, 88, 0, 0}},
        // 1000 + 64535 / 127 and 65535 / 127, then halves
        {1, 1, {9, 9, 9, 9}, {1, 1000, 0, 0, 0, 5, 0, 0, 0}, {1, 9, 9, 9, 9, 1508, 516, 516, 516, 5, 0, 0, 0}},
        {-64, 1, {9, 9, 9, 9}, {1, 1001, 63, 0, 0, 5, 0, 0, 0}, {1, 9, 9, 9, 9, 500, 31, 0, 0, 5, 0, 0, 0}},
    };
    for (const auto &[sharpness, base, extra, row, expected] : cases)
        EXPECT_EQ(fringe(320, record(1, row).slot, base, extra.empty() ? nullptr : extra.data(), sharpness), expected);

    const uint16_t extra[] = {100, 200, 300, 400, 7, 7, 7, 7, 300, 400, 500, 600};
    const values rows = {512, 9, 9, 9, 9, 9, 9, 200, 0, 999, 0, 0, 0, 0, 0, 0, 0, 0, 256, 1, 1, 1, 1, 1, 1, -200, -200};
    EXPECT_EQ(fringe(320, record(3, rows).slot, 3, extra, 0),
              (values{3, 250, 350, 450, 550, 3, 3, 3, 3, 3, 3, -100, -150}));
}

} // namespace
