// Tuning containers to JSON and back, and what is said about bad ones.
#include <cstring>
#include <nlohmann/json.hpp>
#include <random>
#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "desk/json/node.h"
#include "desk/tuning/pack.h"
#include "desk/tuning/to_json.h"
#include "desk/tuning/verdict.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

byte_buffer from_hex(const std::string &digits)
{
    const json_document document = parse_json("test", "\"" + digits + "\"");
    return json_node(document).hex();
}

const std::string header = "56555842" + std::string(40, '0');

byte_buffer container_of(const std::string &records)
{
    return from_hex(header + records);
}

std::string repacked(byte_view bytes)
{
    const byte_buffer packed = pack_container("test", container_source(read_container("test", bytes)));
    return hex_text(packed);
}

// A record by hand in both forms.
struct record_case {
    const char *name;
    const char *bytes;
    const char *source;
};

const record_case record_cases[] = {
    {"u16_rows", "10000000640046010100000164003200",
     R"({"slot":"defect_pixel_correction","family":320,"set":0,"version":100,"rows":[[256,100,50]]})"},
    {"set_1_lies_in_the_third_group", "0e0000000100cf010100ffff2800",
     R"({"slot":"xnr","family":320,"set":1,"version":1,"rows":[[65535,40]]})"},
    {"set_2_lies_in_the_second_group_and_the_unread_byte_stays", "0a00000064078f010000",
     R"({"slot":"xnr","family":320,"set":2,"version":100,"unread":7,"rows":[]})"},
    {"byte_columns", "1400000064004b010100000101020304050607ff",
     R"({"slot":"chroma_nr","family":320,"set":0,"version":100,"rows":[[256,1,2,3,4,5,6,7,255]]})"},
    {"wide_columns", "1c0000006400520101000001010002000300040005000600070000ff",
     R"({"slot":"chroma_nr_alt","family":320,"set":0,"version":100,"rows":[[256,1,2,3,4,5,6,7,65280]]})"},
    {"fringe_100_with_signed_columns", "1c00000064004a0101000001010002000300040005000600ffff00e0",
     R"({"slot":"fringe_control","family":320,"set":0,"version":100,"rows":[[256,1,2,3,4,5,6,-1,-8192]]})"},
    {"fringe_102", "2600000066004a0101000001010002000300040005000600070008000900640065006600ffff",
     R"({"slot":"fringe_control","family":320,"set":0,"version":102,"rows":[[256,1,2,3,4,5,6,7,8]],"count2":9,)"
     R"("extra":[[100,101,102,65535]]})"},
    {"fringe_102_without_its_second_table_stays_bytes", "1e00000066004a01010000010100020003000400050006000700080009 00",
     R"({"slot":"fringe_control","family":320,"set":0,"version":102,)"
     R"("bytes":"010000010100020003000400050006000700080009 00"})"},
    {"fixed_fields", "1e00000064004c0101000200030004000500060007000800090 00a000b00",
     R"({"slot":"ctc_config","family":320,"set":0,"version":100,"scaled":[1,2,3,4,5,6],"base_shift":7,)"
     R"("copied":[8,9,10,11]})"},
    {"short_fixed_fields_stay_bytes", "0a00000064004d010500",
     R"({"slot":"rec_13","family":320,"set":0,"version":100,"bytes":"0500"})"},
    {"long_rows_and_the_bytes_before_them", "2400000064000303000000000000000501000000 00010000ffffffff0200000003000000",
     R"({"slot":"long_3","family":768,"set":0,"version":100,"reserved":"0000000000000005","rows":[[256,-1,2,3]]})"},
    {"a_negative_row_count_stays_bytes", "1400000064008 3060000000000000000ffffffff",
     R"({"slot":"long_3","family":1536,"set":1,"version":100,"bytes":"0000000000000000ffffffff"})"},
    {"rules", "200000006400c502000000000100000002000500030000000000000000003e40",
     R"({"slot":"rules","version":100,"rules":[{"kind":"aux_size","op":">=","threshold":30.0,"set_index":3}]})"},
    {"odd_rules_keep_their_numbers_and_unread_bytes",
     "200000006400c502000000010100000009000000030005000000000000003e40",
     R"({"slot":"rules","version":100,"reserved":"00000001",)"
     R"("rules":[{"kind":9,"op":0,"threshold":30.0,"set_index":3,"reserved":5}]})"},
    {"a_threshold_that_is_no_number_stays_bytes", "200000006400c5020000000001000000010001000100000000000000 0000f87f",
     R"({"slot":"rules","version":100,"bytes":"000000000100000001000100010000000000000000 00f87f"})"},
    {"an_unknown_id", "0b0000000902bc02aabbcc", R"({"id":700,"version":9,"unread":2,"bytes":"aabbcc"})"},
    {"a_set_container", "130000006400 04fc0b0000000900bc02aabbcc",
     R"({"set_index":4,"version":100,"records":[{"id":700,"version":9,"bytes":"aabbcc"}]})"},
    {"a_tagged_set_container_and_a_fragment", "2300000064000 1fc565558420100000000000000000000000000000000000000aabbcc",
     R"({"set_index":1,"version":100,"tagged":true,"header":"0100000000000000000000000000000000000000",)"
     R"("records":[],"trailing":"aabbcc"})"},
};

std::string without_blanks(std::string text)
{
    std::erase(text, ' ');
    return text;
}

class tuning_record_case : public testing::TestWithParam<record_case> {};

TEST_P(tuning_record_case, has_the_same_meaning_in_both_forms)
{
    const std::string bytes = header + without_blanks(GetParam().bytes);
    const std::string source = R"({"records":[)" + without_blanks(GetParam().source) + "]}";
    EXPECT_EQ(hex_text(pack_container("test", source)), bytes);
    const byte_buffer container = from_hex(bytes);
    EXPECT_EQ(json::parse(container_source(read_container("test", container))), json::parse(source));
}

INSTANTIATE_TEST_SUITE_P(all, tuning_record_case, testing::ValuesIn(record_cases),
                         [](const auto &each) { return std::string(each.param.name); });

TEST(tuning_source, header_bytes_and_fragments_survive)
{
    const std::string bytes = "56555842000102030405060708090a0b0c0d0e0f10111213"
                              "0b0000000900bc02aabbcc"
                              "08000000640046"
                              "01";
    EXPECT_EQ(repacked(from_hex(bytes)), bytes);
    EXPECT_EQ(json::parse(container_source(read_container("test", from_hex(bytes))))["trailing"], "0800000064004601");
}

TEST(tuning_source, any_damage_survives_the_round_trip)
{
    const byte_buffer sample = pack_container("sample", qz::tool::sample_tuning);
    ASSERT_EQ(repacked(sample), hex_text(sample));
    std::mt19937 random(7); // NOLINT(*-msc51-cpp): the same cases every time
    for (int round = 0; round < 24; ++round) {
        byte_buffer damaged(sample.begin(), sample.begin() + 24 + static_cast<int>(random() % (sample.size() - 24)));
        for (unsigned i = 0; i < random() % 12; ++i)
            damaged[4 + random() % (damaged.size() - 4)] = static_cast<uint8_t>(random());
        ASSERT_EQ(repacked(damaged), hex_text(damaged)) << round;
    }
    // Every size field: too small, too large, and off by one.
    for (const tuning_record &record : read_container("sample", sample).list) {
        for (const uint32_t size : {7u, static_cast<uint32_t>(record.size()) + 1}) {
            byte_buffer damaged = sample;
            std::memcpy(damaged.data() + record.offset, &size, sizeof size);
            ASSERT_EQ(repacked(damaged), hex_text(damaged)) << record.offset << " " << size;
        }
    }
}

TEST(tuning_source, deep_nesting_costs_no_stack)
{
    constexpr size_t depth = 50000;
    byte_buffer bytes = from_hex(header);
    for (size_t left = depth; left > 0; --left) {
        const auto size = static_cast<uint32_t>(8 * left + 1);
        for (int i = 0; i < 4; ++i)
            bytes.push_back(static_cast<uint8_t>(size >> (8 * i)));
        const byte_buffer rest = from_hex("000001fc");
        bytes.insert(bytes.end(), rest.begin(), rest.end());
    }
    bytes.push_back(0);
    EXPECT_EQ(repacked(bytes), hex_text(bytes));
}

struct problem_case {
    const char *name;
    const char *records;
    const char *problem;
    bool error;
};

const problem_case problem_cases[] = {
    {"size_below_8", "070000006400460101000000",
     "offset 24, id 326: found size 7, expected 8 to the 12 bytes left in its list", true},
    {"size_past_the_list", "0b0000000900bc02aabbcc0d0000006400460101000000",
     "offset 35, id 326: found size 13, expected 8 to the 12 bytes left in its list", true},
    {"size_past_the_nested_list", "130000006400 01fc0c0000000900bc02aabbcc",
     "offset 32, id 700: found size 12, expected 8 to the 11 bytes left in its list", true},
    {"short_tagged_container", "1f000000640001fc5655584200000000000000000000000000000000000000",
     "offset 24, id 64513: found size 31 of a set container with the tag, expected at least 32", true},
    {"offset_0_of_the_320_family", "0a000000640080010000",
     "offset 24, id 384: found id offset 0 of the 320 family, expected 1 to 18 or 20", true},
    {"offset_19", "0a000000640053010000",
     "offset 24, id 339: found id offset 19 of the 320 family, expected 1 to 18 or 20", true},
    {"offset_63", "0a0000006400ff010000",
     "offset 24, id 511: found id offset 63 of the 320 family, expected 1 to 18 or 20", true},
    {"too_many_rows", "10000000640046010200000164003200",
     "offset 24, id 326: found 2 rows, its bytes hold 1: the library uses 1", false},
    {"no_row_count", "09000000640046010 2", "offset 24, id 326: found size 9, too short for a row count: no rows",
     false},
    {"missing_second_table", "1e00000066004a01010000010100020003000400050006000700080009 00",
     "offset 24, id 330: found version 102 without its second table: read as version 101", false},
    {"too_many_rules", "140000006400c502000000000100000000000000",
     "offset 24, id 709: found 1 rules, its bytes hold 0: no rule is used", false},
};

class tuning_problem_case : public testing::TestWithParam<problem_case> {};

TEST_P(tuning_problem_case, names_offset_id_and_reason)
{
    const byte_buffer bytes = container_of(without_blanks(GetParam().records));
    const tuning_container container = read_container("test", bytes);
    ASSERT_EQ(container.problems.size(), 1u);
    EXPECT_EQ(problem_text(container.problems[0]), GetParam().problem);
    EXPECT_EQ(container.has_errors(), GetParam().error);
}

INSTANTIATE_TEST_SUITE_P(all, tuning_problem_case, testing::ValuesIn(problem_cases),
                         [](const auto &each) { return std::string(each.param.name); });

// Whatever the nesting, what the library refuses has an error, and nothing else has.
TEST(tuning_source, deep_errors_are_the_librarys)
{
    for (const auto &[innermost, verdict] : {std::pair("0a000000640053010000", 8u),
                                             {"07000000640046010000", 8u},
                                             {"1f000000640001fc5655584200000000000000000000000000000000000000", 8u},
                                             {"0e0000006400cf010100ffff2800", 0u}}) {
        for (const unsigned depth : {0u, 63u, 64u, 65u, 300u}) {
            std::string records = innermost;
            for (unsigned i = 0; i < depth; ++i)
                records = fmt::format("{:08x}", __builtin_bswap32(static_cast<uint32_t>(records.size() / 2 + 8))) +
                          "640001fc" + records;
            const byte_buffer bytes = container_of(records);
            EXPECT_EQ(library_verdict(bytes), verdict) << depth;
            EXPECT_EQ(read_container("test", bytes).has_errors(), verdict != 0) << innermost << " " << depth;
        }
    }
}

TEST(tuning_source, dropped_and_skipped_records_are_no_problem)
{
    // 320-family offsets 4 and 17, 768-family offset 19, 1536-family offset 4, and an id outside the families.
    const byte_buffer bytes = container_of("080000006400440108000000640051010800000064001303"
                                           "0800000064000406"
                                           "0a000000640000000000");
    const tuning_container container = read_container("test", bytes);
    EXPECT_EQ(std::ranges::distance(container.list), 5);
    EXPECT_TRUE(container.problems.empty());
}

} // namespace
