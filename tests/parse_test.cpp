#include <algorithm>
#include <string>

#include <gtest/gtest.h>

#include "qz_isp/error.h"
#include "qz_mkn.h"
#include "tests/container_builder.h"

namespace {

using test::bytes;
using test::parsed;

// The record address in slot k of a set.
const uint8_t *slot(const isp_tuning_set &set, size_t k)
{
    const uint8_t *address = nullptr;
    std::memcpy(&address, reinterpret_cast<const uint8_t *>(&set) + k * sizeof(void *), sizeof address);
    return address;
}

// The u16 at byte 8 or the i32 at byte 16 of a record.
int32_t row_count(const void *record, bool is_long)
{
    int32_t value = 0;
    std::memcpy(&value, static_cast<const uint8_t *>(record) + (is_long ? 16 : 8), is_long ? 4 : 2);
    return value;
}

std::string limited(int id, long long claimed, int fit)
{
    return "qz[0] tuning record " + std::to_string(id) + ": " + std::to_string(claimed) + " rows claimed, " +
           std::to_string(fit) + " fit\n";
}

// The kinds of records once more, apart from the library's own list: what a container holds stays as it is.
struct kind {
    uint16_t offset;
    size_t slot, data_slot; // data_slot 0: none
    size_t data_at, row_size;
};

const std::vector<kind> short_kinds = {
    {1, 0, 1, 24, 0},     {2, 2, 0, 0, 0},    {3, 3, 0, 0, 0},     {5, 4, 5, 10, 132},   {6, 6, 7, 10, 6},
    {7, 8, 9, 10, 12},    {8, 10, 11, 10, 8}, {9, 12, 13, 10, 10}, {10, 14, 15, 10, 18}, {11, 18, 19, 10, 10},
    {12, 21, 0, 0, 0},    {13, 22, 0, 0, 0},  {14, 23, 24, 10, 8}, {15, 25, 26, 10, 4},  {16, 27, 0, 0, 0},
    {18, 18, 20, 10, 18}, {20, 48, 49, 20, 0}};
const std::vector<kind> long_kinds = {
    {1, 0, 1, 24, 0},      {2, 2, 0, 0, 0},      {3, 30, 31, 20, 16}, {4, 34, 35, 20, 0},   {5, 32, 33, 20, 592},
    {6, 36, 37, 20, 1184}, {7, 38, 39, 20, 252}, {10, 4, 5, 10, 132}, {11, 46, 47, 20, 60}, {12, 44, 45, 20, 392},
    {13, 40, 41, 20, 28},  {14, 42, 43, 20, 0},  {15, 22, 0, 0, 0},   {16, 27, 0, 0, 0}};

TEST(parse, files_every_kind_in_its_slot_and_set_with_the_rows_that_it_holds)
{
    const int set_of_group[] = {0, 2, 1};
    for (const uint16_t base : std::initializer_list<uint16_t>{320, 768, 1536})
        for (uint16_t group = 0; group < 3; ++group)
            for (const auto &[offset, k, data_slot, data_at, row_size] : base == 320 ? short_kinds : long_kinds)
                for (const bool one_claimed_too_many : {false, true}) { // and a byte short of it
                    const auto id = static_cast<uint16_t>(base + 64 * group + offset);
                    SCOPED_TRACE(id);
                    const bool is_long = data_at == 20;
                    bytes payload(data_at > 8 ? data_at - 8 : 0);
                    payload.resize(payload.size() + 2 * row_size +
                                   (one_claimed_too_many && row_size > 0 ? row_size - 1 : 0));
                    if (row_size > 0)
                        payload[is_long ? 8 : 0] = one_claimed_too_many ? 3 : 2;
                    testing::internal::CaptureStderr();
                    const parsed result(test::record(id, payload.empty() ? bytes(1) : payload));
                    EXPECT_EQ(testing::internal::GetCapturedStderr(),
                              one_claimed_too_many && row_size > 0 ? limited(id, 3, 2) : "");
                    ASSERT_EQ(result.status, ISP_SUCCESS);
                    const bool dropped = base == 1536 && (offset == 4 || offset == 14);
                    for (int which = 0; which < 3; ++which) {
                        const isp_tuning_set &set = result.set(which);
                        const bool here = !dropped && which == set_of_group[group];
                        ASSERT_EQ(slot(set, k) != nullptr, here);
                        if (here && data_slot != 0) {
                            EXPECT_EQ(slot(set, data_slot), slot(set, k) + data_at);
                        }
                        if (here && row_size != 0) {
                            EXPECT_EQ(row_count(slot(set, k), is_long), 2);
                        }
                    }
                }
}

TEST(parse, refuses_or_drops_what_has_no_slot)
{
    test::container empty({});
    EXPECT_EQ(isp_parse(empty.blob(), nullptr), ISP_INVALID_ARGUMENT);
    isp_context context = {};
    EXPECT_EQ(isp_parse(nullptr, &context), ISP_INVALID_ARGUMENT);
    EXPECT_EQ(parsed({}, test::header("VUXC")).status, ISP_INVALID_ARGUMENT);
    for (const uint16_t offset : std::initializer_list<uint16_t>{0, 19, 21, 63, 64, 128}) {
        const parsed result(test::record(static_cast<uint16_t>(320 + offset), bytes(8)));
        EXPECT_EQ(result.status, ISP_INVALID_DATA) << offset;
        EXPECT_EQ(result.context.set_count, 0);
        EXPECT_EQ(result.context.tuning_sets[0], nullptr);
    }
    for (const uint16_t id : std::initializer_list<uint16_t>{324, 337, 768, 776, 777, 785, 831, 1540, 1550, 0, 319, 512,
                                                             960, 1728, 64512}) {
        const parsed result(test::record(id, bytes(9))); // 64512 is no set container: what it holds is not looked at
        EXPECT_EQ(result.status, ISP_SUCCESS) << id;
        for (size_t k = 0; k < 50; ++k)
            EXPECT_EQ(slot(result.set(0), k), nullptr) << id;
    }
}

TEST(parse, later_records_replace_earlier_ones_in_both_chroma_encodings)
{
    for (const bool wide_first : {false, true}) {
        const bytes narrow = test::shorts(331, {1, 256, 1, 2, 3, 4});
        const bytes wide = test::shorts(338, {1, 256, 1, 2, 3, 4, 5, 6, 7, 8});
        const parsed result(wide_first ? test::join({wide, narrow}) : test::join({narrow, wide}));
        const isp_chroma_nr_slot &chroma = result.set(0).chroma_nr;
        const auto *rows = reinterpret_cast<const uint8_t *>(chroma.record) + 10;
        EXPECT_EQ(chroma.record->id, wide_first ? 331 : 338);
        EXPECT_EQ(chroma.data, wide_first ? rows : nullptr);
        EXPECT_EQ(chroma.data_alt, wide_first ? nullptr : rows);
    }
}

TEST(parse, fringe_control_takes_what_its_version_has_and_its_bytes_hold)
{
    struct expectation {
        uint8_t version;
        size_t rows, bytes_behind_rows;
        uintptr_t count2;
        bool extra;
    };
    // Rows of nine values, then the exponent 7 and rows of the second table.
    for (const auto &[version, rows, behind, count2, extra] : {expectation{100, 1, 10, 1, false},
                                                               {101, 1, 10, 7, false},
                                                               {102, 1, 10, 7, true},
                                                               {103, 1, 10, 7, true},
                                                               {102, 1, 9, 7, false},
                                                               {102, 1, 2, 7, false},
                                                               {102, 1, 1, 1, false},
                                                               {101, 1, 0, 1, false},
                                                               {102, 3641, 2 + 8 * 3641, 7, true}}) { // from byte 65548
        bytes payload(2 + 18 * rows + behind);
        std::memcpy(payload.data(), &rows, 2);
        if (behind > 0)
            payload[2 + 18 * rows] = 7;
        const parsed result(test::record(330, payload, version));
        const isp_fringe_control_slot &fringe = result.set(0).fringe_control;
        EXPECT_EQ(fringe.count2, count2) << int{version} << ' ' << behind;
        EXPECT_EQ(fringe.extra, extra ? reinterpret_cast<uint8_t *>(fringe.record) + 12 + 18 * rows : nullptr)
            << int{version} << ' ' << behind;
    }
}

TEST(parse, rec_13_is_held_in_at_least_twelve_bytes_and_old_versions_lose_their_second_value)
{
    const parsed result(test::join({test::record(333, {1, 2}, 99), test::record(1536 + 128 + 15, {1, 2, 3, 4}, 100),
                                    test::record(384 + 13, {1, 2, 3, 4}, 99)}));
    const std::vector<uint8_t> expected[] = {{1, 2, 0, 0}, {1, 2, 0, 0}, {1, 2, 3, 4}};
    for (int which = 0; which < 3; ++which) {
        const auto *held = reinterpret_cast<const uint8_t *>(result.set(which).rec_13);
        EXPECT_EQ(std::vector<uint8_t>(held + 8, held + 12), expected[which]) << which;
    }
}

TEST(parse, row_counts_are_limited_to_the_bytes_and_short_records_read_as_zeros)
{
    testing::internal::CaptureStderr();
    const parsed result(
        test::join({test::record(326, {5}), test::long_rows(768 + 13, INT32_MAX, {}), test::long_rows(768 + 11, -5, {}),
                    test::record(323, {}), test::record(768 + 3, {}), test::record(1, bytes(1))}));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), limited(326, 5, 0) + limited(781, INT32_MAX, 0));
    EXPECT_EQ(row_count(result.set(0).defect_pixel_correction.record, false), 0);
    EXPECT_EQ(row_count(result.set(0).long_13.record, true), 0);
    EXPECT_EQ(row_count(result.set(0).long_11.record, true), -5);
    EXPECT_EQ(row_count(result.set(0).long_3.record, true), 0);
    EXPECT_EQ(row_count(result.set(0).rec_3, false), 0);
}

TEST(parse, of_very_many_limited_counts_sixteen_are_told_and_how_many_more)
{
    for (const int records : {16, 17, 40}) {
        bytes all;
        std::string expected;
        for (int i = 0; i < records; ++i) {
            const auto id = static_cast<uint16_t>(i % 2 == 0 ? 326 : 781);
            all = test::join({all, id == 326 ? test::record(id, {5, 0}) : test::long_rows(id, 5, {})});
            if (i < 16)
                expected += limited(id, 5, 0);
        }
        if (records > 16)
            expected += "qz[0] tuning: " + std::to_string(records - 16) + " more records claim more rows than fit\n";
        testing::internal::CaptureStderr();
        const parsed result(all);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), expected);
        EXPECT_EQ(row_count(result.set(0).defect_pixel_correction.record, false), 0);
        EXPECT_EQ(row_count(result.set(0).long_13.record, true), 0);
    }
}

TEST(parse, set_containers_make_room_for_the_largest_index_and_fill_their_own)
{
    const auto xnr = [](uint16_t value) { return test::shorts(335, {1, 256, value}); };
    const parsed result(test::join(
        {xnr(1),
         test::set_container(3, test::join({xnr(3), test::set_container(5, xnr(5), true), test::shorts(336, {0})})),
         test::shorts(336, {0}), test::set_container(2, xnr(2))}));
    ASSERT_EQ(result.status, ISP_SUCCESS);
    ASSERT_EQ(result.context.set_count, 6);
    EXPECT_EQ(result.context.tuning_sets[1], result.context.tuning_sets[0] + 6);
    EXPECT_EQ(result.context.tuning_sets[2], result.context.tuning_sets[0] + 12);
    constexpr uint16_t values[] = {1, 0, 2, 3, 0, 5};
    for (int index = 0; index < 6; ++index) {
        const isp_table_slot &slot = result.set(0, index).xnr;
        EXPECT_EQ(slot.record != nullptr ? static_cast<const uint16_t *>(slot.data)[1] : 0, values[index]);
        EXPECT_EQ(result.set(0, index).rec_16 != nullptr, index == 0 || index == 3);
    }
}

TEST(parse, deep_nesting_costs_no_stack)
{
    // Every level is followed by a record, so that each has to be remembered.
    constexpr size_t levels = 100000;
    bytes opening;
    for (size_t i = 0; i < levels; ++i) {
        const auto inner = static_cast<uint32_t>((levels - i) * 8 + (levels - i) * 12);
        test::append(opening, inner);
        test::append(opening, uint32_t{64513} << 16);
    }
    for (size_t i = 0; i < levels; ++i) {
        const bytes tail = test::record(1, bytes(4));
        opening.insert(opening.end(), tail.begin(), tail.end());
    }
    const parsed result(opening);
    EXPECT_EQ(result.status, ISP_SUCCESS);
    EXPECT_EQ(result.context.set_count, 2);
}

TEST(parse, rule_record_is_referred_to_in_place)
{
    parsed result(test::join({test::record(709, bytes(7)), test::rules({{1, 1, 1, 0.0}})}));
    const auto *start = static_cast<const uint8_t *>(result.from.blob()->data);
    EXPECT_EQ(result.context.rules.record, start + 24 + 15);
    EXPECT_EQ(result.context.rules.first_rule, start + 24 + 15 + 16);

    // A container without rules has none, whatever was parsed before.
    test::container other({});
    EXPECT_EQ(isp_parse(other.blob(), &result.context), ISP_SUCCESS);
    EXPECT_EQ(result.context.rules.record, nullptr);
    EXPECT_EQ(result.context.rules.first_rule, nullptr);

    // A count that fits only when 16 times it wraps.
    const parsed wrapped(test::record(709, {0, 0, 0, 0, 0, 0, 0, 0x10}));
    EXPECT_NE(wrapped.context.rules.record, nullptr);
    EXPECT_EQ(wrapped.context.rules.first_rule, nullptr);
}

TEST(parse, truncation_at_every_byte_and_every_bad_size_end_cleanly)
{
    const bytes whole = test::join(
        {test::header(), test::shorts(326, {1, 256, 1, 2}), test::shorts(330, {1, 256, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 102),
         test::record(333, {1, 2, 3, 4}), test::long_rows(771, 1, {256, 1, 2, 3}), test::rules({{1, 2, 1, 5.0}}),
         test::set_container(1, test::join({test::shorts(331, {1, 256, 0, 0, 0, 0}),
                                            test::set_container(2, test::record(332, bytes(22)), true)}))});
    for (size_t length = 0; length <= whole.size(); ++length) {
        const parsed result({}, bytes(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length)));
        EXPECT_TRUE(result.status == ISP_SUCCESS || result.status == ISP_INVALID_DATA ||
                    (result.status == ISP_INVALID_ARGUMENT && length < 24));
    }
    for (size_t at = 24; at < whole.size(); ++at)
        for (const uint32_t size : {0u, 7u, 8u, 31u, 0x7fffffffu, 0xffffffffu}) {
            bytes bad = whole;
            std::memcpy(bad.data() + at, &size, std::min<size_t>(4, bad.size() - at));
            const parsed result({}, bad);
            EXPECT_TRUE(result.status == ISP_SUCCESS || result.status == ISP_INVALID_DATA);
        }
}

TEST(parse, sizes_that_leave_the_list_fail_whatever_the_id)
{
    struct expectation {
        uint32_t size;
        uint16_t id;
        uint32_t status;
    };
    for (const auto &[size, id, status] : {expectation{7, 1, ISP_INVALID_DATA},
                                           {13, 1, ISP_INVALID_DATA},
                                           {12, 1, ISP_SUCCESS},
                                           {8, 1, ISP_SUCCESS},
                                           {4, 1, ISP_INVALID_DATA},
                                           {0, 326, ISP_INVALID_DATA}}) {
        bytes one = test::record(id, bytes(4));
        std::memcpy(one.data(), &size, sizeof size);
        EXPECT_EQ(parsed(one).status, status) << size;
    }
    // Eight bytes at a list's end are no record any more, whatever they say; one more byte is.
    EXPECT_EQ(parsed(test::record(320, {})).status, ISP_SUCCESS);
    EXPECT_EQ(parsed(test::set_container(1, test::record(320, {}))).status, ISP_SUCCESS);
    EXPECT_EQ(parsed(test::record(320, {0})).status, ISP_INVALID_DATA);
    // A tagged list has a header of 24 bytes.
    for (const uint8_t size : std::initializer_list<uint8_t>{12, 31, 32}) {
        bytes tagged = test::set_container(1, {}, true);
        tagged.resize(size);
        tagged[0] = size;
        EXPECT_EQ(parsed(tagged).status, size < 32 ? ISP_INVALID_DATA : ISP_SUCCESS);
    }
}

} // namespace
