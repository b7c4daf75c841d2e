#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <random>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/noise_detail.h"

namespace {

using values = std::vector<int>;

constexpr int kept = 0xA5A5; // what every field holds before the call

// A record and its rows of 16-bit words, each with its key first.
struct record {
    record(size_t row_count, const values &rows) : words(5)
    {
        for (const int word : rows)
            words.push_back(static_cast<uint16_t>(word));
        words[4] = static_cast<uint16_t>(row_count);
        slot = {reinterpret_cast<isp_record *>(words.data()), words.data() + 5};
    }
    std::vector<uint16_t> words;
    isp_table_slot slot;
};

template <auto compute, typename Field, size_t... k>
values with_field_pointers(uint16_t gain, const isp_table_slot &slot, int8_t strength)
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
constexpr block defect_pixel = with_field_pointers<compute_defect_pixel_correction, uint32_t, 0, 1>;
constexpr block noise = with_field_pointers<compute_noise_reduction, uint32_t, 0, 1, 2, 3, 4>;
constexpr block temporal = with_field_pointers<compute_temporal_noise_reduction, uint32_t, 0, 1, 2>;
constexpr block xnr = with_field_pointers<compute_xnr, uint32_t, 0>;
constexpr block edge = with_field_pointers<compute_edge_enhancement, uint32_t, 0, 1, 2>;
constexpr block y_edge = with_field_pointers<compute_y_edge_enhancement, uint16_t, 0, 1, 2, 3>;
constexpr block chroma = with_chroma_slot<false>;
constexpr block chroma_bytes = with_chroma_slot<true>;
constexpr std::pair<block, size_t> blocks_of_words[] = {{defect_pixel, 2}, {noise, 5},  {temporal, 3}, {xnr, 1},
                                                        {edge, 3},         {y_edge, 4}, {chroma, 8}};

// The exponent, the unused byte and fields 0 to 11.
values fringe(uint16_t gain, const isp_table_slot &slot, uintptr_t base, const void *extra, int8_t sharpness)
{
    aic_fringe_control out = {0xA5, 0xA5, {kept, kept, kept, kept}, {}, {}, {}};
    const isp_fringe_control_slot all = {slot.record, slot.data, base, extra};
    compute_fringe_control(gain, &all, sharpness, &out);
    values fields = {out.exponent, out.unused};
    fields.insert(fields.end(), out.field_0_to_3, out.field_0_to_3 + 4);
    fields.insert(fields.end(), out.field_4_to_7, out.field_4_to_7 + 4);
    fields.insert(fields.end(), out.field_8_to_9, out.field_8_to_9 + 2);
    fields.insert(fields.end(), out.field_10_to_11, out.field_10_to_11 + 2);
    return fields;
}

TEST(gain_rows, bracket_the_gain_by_unsigned_keys_in_any_order)
{
    constexpr std::pair<uint16_t, int> value_at[] = {{0, 100},   {255, 100},   {256, 100},    {320, 150},   {384, 200},
                                                     {512, 300}, {20256, 650}, {40000, 1000}, {65535, 1000}};
    for (const auto &[compute, columns] : blocks_of_words) {
        values rows;
        // The second row of key 256 is never taken.
        for (const auto &[key, value] : {std::pair{40000, 1000}, {256, 100}, {512, 300}, {256, 5000}}) {
            rows.push_back(key);
            for (size_t k = 0; k < columns; ++k)
                rows.push_back(value + static_cast<int>(k));
        }
        for (const auto &[gain, value] : value_at) {
            const values out = compute(gain, record(4, rows).slot, 0);
            for (size_t k = 0; k < columns; ++k)
                EXPECT_EQ(out[k], value + static_cast<int>(k)) << columns << " columns at gain " << gain;
        }
    }
}

TEST(gain_rows, missing_leave_every_field)
{
    record no_rows(0, {});
    record one_row(1, values(9));
    for (const isp_table_slot &slot : {no_rows.slot, {nullptr, nullptr}, {one_row.slot.record, nullptr}}) {
        for (const auto &[compute, columns] : blocks_of_words)
            EXPECT_EQ(compute(256, slot, 50), values(columns, kept));
        EXPECT_EQ(chroma_bytes(256, slot, 50), values(8, kept));
        EXPECT_EQ(fringe(256, slot, 1, nullptr, 50),
                  (values{0xA5, 0xA5, kept, kept, kept, kept, 0, 0, 0, 0, 0, 0, 0, 0}));
    }
}

TEST(gain_rows, far_keys_wrap_the_product)
{
    // 40000 * 65535 is 2^32 too much for the span: 40000 - 2^32 / 65535 = -25537.
    EXPECT_EQ(y_edge(40000, record(2, {0, 0, 0, 0, 0, 65535, 65535, 0, 0, 0}).slot, 0)[0], 65536 - 25537);
    EXPECT_EQ(xnr(40000, record(2, {0, 0, 65535, 65535}).slot, 0)[0], -25537);
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
        {noise, 0, {0, 65535, 1000, 512, 128, 64}, {65535, 1000, 512, 128, 64}},
        {noise, 127, {0, 14336, 1000, 65535, 128, 64}, {65535, 5000, 65535, 128, 64}},
        {noise, -128, {0, 14336, 1000, 512, 128, 64}, {2867, 200, 512, 128, 64}},
        {noise, 1, {0, 1000, 1270, 9, 8, 7}, {1031, 1310, 9, 8, 7}}, // 1.0315
        {noise, -1, {0, 1000, 1600, 9, 8, 7}, {993, 1590, 9, 8, 7}}, // 0.99375
        {temporal, 0, {0, 65535, 32, 31}, {65535, 32, 31}},
        {temporal, 127, {0, 32768, 32, 31}, {163840, 32, 31}},
        {temporal, -128, {0, 32768, 32, 31}, {6553, 32, 31}},
        {edge, 0, {0, 65535, 256, 2049}, {65535, 256, 2049}},
        {edge, 127, {0, 65535, 256, 2048}, {196605, 256, 4096}},
        {edge, -128, {0, 8192, 256, 2048}, {2727, 256, 1024}},
        {edge, 1, {0, 8192, 256, 2048}, {8321, 256, 2064}},  // 129/127 and 128/127
        {edge, -1, {0, 8192, 256, 2048}, {8149, 256, 2040}}, // 0.99479 and 0.99609
        {y_edge, 0, {0, 9000, 1, 2, 3}, {9000, 1, 2, 3}},
        {y_edge, 127, {0, 1000, 2000, 3, 13200}, {5000, 8191, 15, 66000 - 65536}},
        {y_edge, -128, {0, 1000, 65535, 5, 4}, {200, 8191, 1, 0}},
        {chroma, 0, {0, 1, 2, 9000, 4, 5, 6, 7, 8}, {1, 2, 9000, 4, 5, 6, 7, 8}},
        {chroma, 127, {0, 9000, 2, 100, 100, 100, 50, 50, 54}, {9000, 2, 20, 20, 20, 10, 10, 10}},
        {chroma, -128, {0, 4, 9000, 100, 2000, 13200, 50, 50, 50}, {4, 9000, 500, 8191, 464, 250, 250, 250}},
        {chroma, 1, {0, 4, 2, 1000, 0, 0, 0, 0, 1270}, {4, 2, 993, 0, 0, 0, 0, 1262}},   // 0.9937
        {chroma, -1, {0, 4, 2, 1000, 0, 0, 0, 0, 1600}, {4, 2, 1031, 0, 0, 0, 0, 1650}}, // 1.03125
        {chroma_bytes, 0, {0, 0x0204, 0x6464, 0x3264, 0x3233}, {128, 64, 100, 100, 100, 50, 51, 50}},
        {chroma_bytes, -128, {0, 0xFF04, 0x0064, 0xFF64, 0x3232}, {128, 8160, 500, 0, 500, 1275, 250, 250}},
    };
    for (const auto &[compute, strength, row, expected] : cases)
        EXPECT_EQ(compute(256, record(1, row).slot, strength), expected) << "strength " << int{strength};
}

TEST(chroma_nr, interpolates_bytes_before_they_count_32_fold)
{
    const record table(2, {256, 0x0401, 0, 0, 0, 512, 0x0202, 0, 0, 0});
    EXPECT_EQ(chroma_bytes(384, table.slot, 0), (values{64, 96, 0, 0, 0, 0, 0, 0}));
}

TEST(fringe_control, shares_one_shift)
{
    struct {
        values columns;
        int8_t sharpness;
        uintptr_t base;
        std::vector<uint16_t> extra;
        values expected;
    } const cases[] = {
        {{1, 2, 3, 4, 5, 8191, 0, -8191}, 0, 9, {}, {9, 0xA5, kept, kept, kept, kept, 1, 2, 3, 4, 5, 8191, 0, -8191}},
        // The magnitude of a negative field counts, and its shift keeps the sign.
        {{1, 2, 3, 4, 5, 6, -8192, -3}, 0, 7, {8191, 1, 2, 3}, {8, 0xA5, 4095, 0, 1, 1, 0, 1, 1, 2, 2, 3, -4096, -2}},
        {{20000, 4, 8, 12, 16, 20, 24, -9}, 0, 0x1FF, {0, 4, 8, 11}, {1, 0xA5, 0, 1, 2, 2, 5000, 1, 2, 3, 4, 5, 0, -3}},
        {{0, 0, 0, 0, 0, 8, 8, -8}, 0, 0, {16384, 32767, 8, 0}, {2, 0xA5, 4096, 8191, 2, 0, 0, 0, 0, 0, 0, 2, 0, -2}},
        {{0, 1, 9, 65535, 80, 88, 0, 0},
         127,
         1,
         {9, 9, 9, 9},
         {4, 0xA5, 1, 1, 1, 1, 8191, 8191, 8191, 8191, 10, 11, 0, 0}},
        {{0, 1, 9, 65535, 80, 88, 0, 0}, -128, 1, {9, 9, 9, 9}, {1, 0xA5, 9, 9, 9, 9, 0, 0, 0, 0, 80, 88, 0, 0}},
        // 1000 + 64535 / 127 and 0 + 65535 / 127, then 1000 - 1000 / 128 and 64 - 0.5
        {{1000, 0, 0, 0, 5, 0, 0, 0}, 1, 1, {9, 9, 9, 9}, {1, 0xA5, 9, 9, 9, 9, 1508, 516, 516, 516, 5, 0, 0, 0}},
        {{1000, 64, 0, 0, 5, 0, 0, 0}, -1, 1, {9, 9, 9, 9}, {1, 0xA5, 9, 9, 9, 9, 992, 63, 0, 0, 5, 0, 0, 0}},
    };
    for (const auto &[columns, sharpness, base, extra, expected] : cases) {
        values row = {256};
        row.insert(row.end(), columns.begin(), columns.end());
        EXPECT_EQ(fringe(300, record(1, row).slot, base, extra.empty() ? nullptr : extra.data(), sharpness), expected);
    }
}

TEST(fringe_control, interpolates_signed_columns_and_the_second_table_between_the_same_rows)
{
    const record table(3,
                       {512, 9, 9, 9, 9, 9, 9, 200, 0, 999, 0, 0, 0, 0, 0, 0, 0, 0, 256, 1, 1, 1, 1, 1, 1, -200, -200});
    const std::vector<uint16_t> extra = {100, 200, 300, 400, 7, 7, 7, 7, 300, 400, 500, 600};
    EXPECT_EQ(fringe(320, table.slot, 3, extra.data(), 0),
              (values{3, 0xA5, 250, 350, 450, 550, 3, 3, 3, 3, 3, 3, -100, -150}));
}

TEST(noise_detail, keeps_to_the_fields_ranges_whatever_the_tuning)
{
    std::mt19937 random(4);
    for (int i = 0; i < 20000; ++i) {
        values rows(27);
        std::generate(rows.begin(), rows.end(), [&] { return static_cast<int>(random() & 0xFFFF); });
        const record table(1 + random() % 3, rows);
        const auto gain = static_cast<uint16_t>(random());
        const auto strength = static_cast<int8_t>(i % 2 != 0 ? 1 + random() % 127 : 128 + random() % 128);
        for (const auto &[compute, columns] : blocks_of_words)
            compute(gain, table.slot, strength);
        EXPECT_LE(static_cast<uint32_t>(noise(gain, table.slot, strength)[1]), 65535u);
        EXPECT_LE(y_edge(gain, table.slot, strength)[3], 8191);
        EXPECT_LE(chroma(gain, table.slot, strength)[7], 8191);
        const values fields = fringe(gain, table.slot, 0, table.slot.data, strength);
        EXPECT_LE(fields[0], 4);
        for (size_t k = 2; k < fields.size(); ++k)
            EXPECT_LE(std::abs(static_cast<int16_t>(fields[k])), 8192);
    }
}

} // namespace
