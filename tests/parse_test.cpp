#include <random>

#include <gtest/gtest.h>

#include "container_builder.h"
#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_mkn.h"

namespace {

using test::bytes;
using test::container;

// A bare context that isp_parse() fills.
struct parsed {
    isp_context context = {};
    uint32_t status;

    explicit parsed(const isp_blob *blob) : status(isp_parse(blob, &context)) {}
    ~parsed() { isp_parse_deinit(&context); }
    parsed(const parsed &) = delete;
    parsed &operator=(const parsed &) = delete;

    const isp_tuning_set &set(int which, int index = 0) const { return context.tuning_sets[which][index]; }
};

// The record address in slot k of a set.
const uint8_t *slot(const isp_tuning_set &set, size_t k)
{
    const uint8_t *address = nullptr;
    std::memcpy(&address, reinterpret_cast<const uint8_t *>(&set) + k * sizeof(void *), sizeof address);
    return address;
}

TEST(parse, files_every_kind_in_its_slot_and_set)
{
    struct expectation {
        uint16_t offset;
        size_t slot;
        size_t payload; // 0: none
    };
    const std::vector<expectation> short_kinds = {
        {1, 0, 24},   {2, 2, 0},    {3, 3, 0},   {5, 4, 10},  {6, 6, 10},   {7, 8, 10},   {8, 10, 10}, {9, 12, 10},
        {10, 14, 10}, {11, 18, 10}, {12, 21, 0}, {13, 22, 0}, {14, 23, 10}, {15, 25, 10}, {16, 27, 0}, {20, 48, 20}};
    const std::vector<expectation> long_kinds = {{1, 0, 24},   {2, 2, 0},    {3, 30, 20}, {4, 34, 20},  {5, 32, 20},
                                                 {6, 36, 20},  {7, 38, 20},  {10, 4, 10}, {11, 46, 20}, {12, 44, 20},
                                                 {13, 40, 20}, {14, 42, 20}, {15, 22, 0}, {16, 27, 0}};
    const int set_of_group[] = {0, 2, 1};
    for (const uint16_t base : std::initializer_list<uint16_t>{320, 768, 1536}) {
        for (uint16_t group = 0; group < 3; ++group) {
            for (const auto &[offset, k, payload] : base == 320 ? short_kinds : long_kinds) {
                const auto id = static_cast<uint16_t>(base + 64 * group + offset);
                SCOPED_TRACE(id);
                container one({test::record(id, bytes(40, 0))});
                const parsed result(one.blob());
                ASSERT_EQ(result.status, ISP_SUCCESS);
                const bool dropped = base == 1536 && (offset == 4 || offset == 14);
                for (int which = 0; which < 3; ++which) {
                    const isp_tuning_set &set = result.set(which);
                    const bool here = !dropped && which == set_of_group[group];
                    ASSERT_EQ(slot(set, k) != nullptr, here);
                    if (here && payload != 0) {
                        EXPECT_EQ(slot(set, k + 1), slot(set, k) + payload);
                    }
                }
            }
        }
    }
}

TEST(parse, refuses_or_drops_what_has_no_slot)
{
    container empty({});
    EXPECT_EQ(isp_parse(empty.blob(), nullptr), ISP_INVALID_ARGUMENT);
    EXPECT_EQ(parsed(nullptr).status, ISP_INVALID_ARGUMENT);
    const bytes other = test::header("VUXC");
    const isp_blob blob = {other.data(), QZ_MKN_HEADER_SIZE};
    EXPECT_EQ(parsed(&blob).status, ISP_INVALID_ARGUMENT);
    for (const uint16_t offset : std::initializer_list<uint16_t>{0, 19, 21, 63}) {
        container one({test::record(static_cast<uint16_t>(320 + offset), bytes(8))});
        const parsed result(one.blob());
        EXPECT_EQ(result.status, ISP_INVALID_DATA) << offset;
        EXPECT_EQ(result.context.set_count, 0);
        EXPECT_EQ(result.context.tuning_sets[0], nullptr);
    }
    for (const uint16_t id : std::initializer_list<uint16_t>{324, 337, 768, 776, 777, 785, 831, 1540, 1550, 0, 319, 512,
                                                             960, 1728, 64512}) {
        container one({test::record(id, bytes(8))});
        const parsed result(one.blob());
        EXPECT_EQ(result.status, ISP_SUCCESS) << id;
        for (size_t k = 0; k < 50; ++k)
            EXPECT_EQ(slot(result.set(0), k), nullptr) << id;
    }
}

TEST(parse, later_records_replace_earlier_ones_in_both_chroma_encodings)
{
    container one(
        {test::short_rows(331, 1, {256, 1, 2, 3, 4}), test::short_rows(338, 1, {256, 1, 2, 3, 4, 5, 6, 7, 8})});
    const parsed alt(one.blob());
    EXPECT_EQ(alt.set(0).chroma_nr.record->id, 338);
    EXPECT_EQ(alt.set(0).chroma_nr.data, nullptr);
    EXPECT_EQ(alt.set(0).chroma_nr.data_alt, reinterpret_cast<uint8_t *>(alt.set(0).chroma_nr.record) + 10);

    container two(
        {test::short_rows(338, 1, {256, 1, 2, 3, 4, 5, 6, 7, 8}), test::short_rows(331, 1, {256, 1, 2, 3, 4})});
    const parsed plain(two.blob());
    EXPECT_EQ(plain.set(0).chroma_nr.record->id, 331);
    EXPECT_NE(plain.set(0).chroma_nr.data, nullptr);
    EXPECT_EQ(plain.set(0).chroma_nr.data_alt, nullptr);
}

TEST(parse, fringe_control_takes_what_its_version_has_and_its_bytes_hold)
{
    struct expectation {
        uint8_t version;
        size_t bytes_behind_rows;
        uintptr_t count2;
        bool extra;
    };
    // One row of nine values, then the exponent 7 and one row of the second table.
    for (const auto &[version, behind, count2, extra] : {expectation{100, 10, 1, false},
                                                         {101, 10, 7, false},
                                                         {102, 10, 7, true},
                                                         {103, 10, 7, true},
                                                         {102, 9, 7, false},
                                                         {102, 2, 7, false},
                                                         {102, 1, 1, false},
                                                         {101, 0, 1, false}}) {
        bytes payload;
        test::append(payload, uint16_t{1});
        payload.resize(20);
        for (const uint16_t value : std::initializer_list<uint16_t>{7, 1, 2, 3, 4})
            test::append(payload, value);
        payload.resize(20 + behind);
        container one({test::record(330, payload, version)});
        const parsed result(one.blob());
        const isp_fringe_control_slot &fringe = result.set(0).fringe_control;
        EXPECT_EQ(fringe.count2, count2) << int{version} << ' ' << behind;
        EXPECT_EQ(fringe.extra != nullptr, extra) << int{version} << ' ' << behind;
        if (extra) {
            EXPECT_EQ(fringe.extra, reinterpret_cast<uint8_t *>(fringe.record) + 30);
        }
    }
}

TEST(parse, rec_13_is_held_in_at_least_twelve_bytes_and_old_versions_lose_their_second_value)
{
    container shorter({test::record(333, {1, 2}, 99), test::record(1536 + 128 + 15, {1, 2, 3, 4}, 100)});
    const parsed result(shorter.blob());
    const auto *held = reinterpret_cast<const uint8_t *>(result.set(0).rec_13);
    EXPECT_EQ(std::vector<uint8_t>(held + 8, held + 12), (std::vector<uint8_t>{1, 2, 0, 0}));
    held = reinterpret_cast<const uint8_t *>(result.set(1).rec_13);
    EXPECT_EQ(std::vector<uint8_t>(held + 8, held + 12), (std::vector<uint8_t>{1, 2, 0, 0}));
}

TEST(parse, row_counts_are_limited_to_the_bytes_and_short_records_read_as_zeros)
{
    container one({test::short_rows(326, 9, {1, 2, 3, 4, 5, 6, 7}),
                   test::long_rows(768 + 13, 3, std::vector<int32_t>(13)), test::long_rows(768 + 11, -5, {}),
                   test::record(323, {}), test::record(768 + 3, {}), test::record(1, bytes(1))});
    testing::internal::CaptureStderr();
    const parsed result(one.blob());
    const std::string log = testing::internal::GetCapturedStderr();
    const auto count = [](const isp_record *record, size_t at) {
        int32_t value = 0;
        std::memcpy(&value, reinterpret_cast<const uint8_t *>(record) + at, at == 8 ? 2 : 4);
        return value;
    };
    EXPECT_EQ(count(result.set(0).defect_pixel_correction.record, 8), 2); // 14 bytes of rows of 6
    EXPECT_EQ(count(result.set(0).long_13.record, 16), 1);                // 52 bytes of rows of 28
    EXPECT_EQ(count(result.set(0).long_11.record, 16), -5);
    EXPECT_EQ(count(result.set(0).long_3.record, 16), 0);
    EXPECT_EQ(count(result.set(0).rec_3, 10), 0);
    EXPECT_NE(log.find("326"), std::string::npos);
    EXPECT_NE(log.find("781"), std::string::npos);
    EXPECT_EQ(std::count(log.begin(), log.end(), '\n'), 2);
}

TEST(parse, set_containers_grow_the_sets_and_keep_what_was_filed)
{
    container one({test::short_rows(335, 1, {256, 1}),
                   test::set_container(3, test::join({test::short_rows(335, 1, {256, 3}),
                                                      test::set_container(5, test::short_rows(335, 1, {256, 5}), true),
                                                      test::short_rows(336, 0, {})})),
                   test::short_rows(336, 0, {}), test::set_container(2, {})});
    const parsed result(one.blob());
    ASSERT_EQ(result.status, ISP_SUCCESS);
    ASSERT_EQ(result.context.set_count, 6);
    EXPECT_EQ(result.context.tuning_sets[1], result.context.tuning_sets[0] + 6);
    EXPECT_EQ(result.context.tuning_sets[2], result.context.tuning_sets[0] + 12);
    const auto value = [&](int index) { return static_cast<const uint16_t *>(result.set(0, index).xnr.data)[1]; };
    EXPECT_EQ(value(0), 1);
    EXPECT_EQ(value(3), 3);
    EXPECT_EQ(value(5), 5);
    EXPECT_NE(result.set(0, 0).rec_16, nullptr);
    EXPECT_NE(result.set(0, 3).rec_16, nullptr);
    EXPECT_EQ(result.set(0, 5).rec_16, nullptr);
    EXPECT_EQ(result.set(0, 2).xnr.record, nullptr);
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
    container one({opening});
    const parsed result(one.blob());
    EXPECT_EQ(result.status, ISP_SUCCESS);
    EXPECT_EQ(result.context.set_count, 2);
}

TEST(parse, rule_record_is_referred_to_in_place)
{
    container one({test::record(709, bytes(7)), test::rules({{1, 1, 1, 0.0}})});
    const parsed result(one.blob());
    const auto *start = static_cast<const uint8_t *>(one.blob()->data);
    EXPECT_EQ(result.context.rules.record, start + 24 + 15);
    EXPECT_EQ(result.context.rules.first_rule, start + 24 + 15 + 16);

    // A count that fits only when 16 times it wraps.
    bytes lying(8);
    lying[7] = 0x10;
    container two({test::record(709, lying)});
    const parsed wrapped(two.blob());
    EXPECT_NE(wrapped.context.rules.record, nullptr);
    EXPECT_EQ(wrapped.context.rules.first_rule, nullptr);
}

bytes varied_records()
{
    return test::join(
        {test::short_rows(326, 1, {256, 1, 2}), test::short_rows(330, 1, {256, 1, 2, 3, 4, 5, 6, 7, 8, 9}, 102),
         test::record(333, {1, 2, 3, 4}), test::long_rows(771, 1, {256, 1, 2, 3}), test::rules({{1, 2, 1, 5.0}}),
         test::set_container(1, test::join({test::short_rows(331, 1, {256, 0, 0, 0, 0}),
                                            test::set_container(2, test::record(332, bytes(22)), true)}))});
}

TEST(parse, truncation_at_every_byte_and_every_bad_size_end_cleanly)
{
    const bytes whole = test::join({test::header(), varied_records()});
    for (size_t length = 0; length <= whole.size(); ++length) {
        const bytes cut(whole.begin(), whole.begin() + static_cast<ptrdiff_t>(length));
        const isp_blob blob = {cut.data(), static_cast<uint32_t>(cut.size())};
        const parsed result(&blob);
        EXPECT_TRUE(result.status == ISP_SUCCESS || result.status == ISP_INVALID_DATA ||
                    (result.status == ISP_INVALID_ARGUMENT && length < 24));
    }
    for (size_t at = 24; at < whole.size(); ++at) {
        for (const uint32_t size : {0u, 7u, 8u, 31u, 0x7fffffffu, 0xffffffffu}) {
            bytes bad = whole;
            std::memcpy(bad.data() + at, &size, std::min<size_t>(4, bad.size() - at));
            const isp_blob blob = {bad.data(), static_cast<uint32_t>(bad.size())};
            const parsed result(&blob);
            EXPECT_TRUE(result.status == ISP_SUCCESS || result.status == ISP_INVALID_DATA);
        }
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
                                           {0, 326, ISP_INVALID_DATA}}) {
        bytes one = test::record(id, bytes(4));
        std::memcpy(one.data(), &size, sizeof size);
        container bad({one});
        EXPECT_EQ(parsed(bad.blob()).status, status) << size;
    }
    bytes tagged = test::set_container(1, {}, true);
    tagged.resize(31);
    tagged[0] = 31;
    container short_header({tagged});
    EXPECT_EQ(parsed(short_header.blob()).status, ISP_INVALID_DATA);
}

} // namespace
