// What a check of a tuning finds: faults planted in a good source, one by one.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <gtest/gtest.h>

#include "desk/check/check.h"
#include "desk/tuning/verdict.h"
#include "frame/defaults.h"
#include "tests/container_builder.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

std::vector<finding> findings_of(byte_view container)
{
    std::vector<finding> all;
    check_tuning(container, [&](const finding &found) { all.push_back(found); });
    return all;
}

std::vector<finding> findings_in(const std::string &source)
{
    return findings_of(pack_container("test", source));
}

// "warning keys-equal tuning:xnr[0/0].rows[1].key"
std::string line_of(const finding &found)
{
    return fmt::format("{} {} {}", severity_names[static_cast<size_t>(found.level)], found.code->code,
                       found.place.name);
}

std::vector<std::string> lines_of(const std::vector<finding> &findings)
{
    std::vector<std::string> lines;
    std::ranges::transform(findings, std::back_inserter(lines), line_of);
    return lines;
}

bool has_line(const std::vector<std::string> &lines, const std::string &line)
{
    return std::ranges::find(lines, line) != lines.end();
}

std::string list_of(std::initializer_list<std::pair<int, int>> runs)
{
    std::string list;
    for (const auto &[count, value] : runs)
        for (int i = 0; i < count; ++i)
            list += fmt::format(",{}", value);
    return list;
}

// Whatever the sample may say of itself, nothing here is worth a word but blocks without records.
const std::string good = R"({"records": [
 {"slot": "rules", "rules": [{"kind": "frame", "op": "<=", "threshold": 1920000, "set_index": 1},
                             {"kind": "frame", "op": ">", "threshold": 4915200, "set_index": 2}]},
 {"slot": "xnr", "family": 320, "set": 0, "rows": [[256,160],[1024,720],[2048,1190],[4096,1745],[8192,2375]]},
 {"slot": "noise_reduction", "family": 320, "set": 0,
  "rows": [[256,3200,3600,320,96,112],[1024,9111,8985,725,192,224],[2048,13628,13101,928,240,280]]},
 {"slot": "y_edge_enhancement", "family": 320, "set": 1, "rows": [[256,1280,1180,1040,960],[4096,615,573,505,468]]},
 {"slot": "chroma_nr", "family": 320, "set": 0, "rows": [[256,3,2,80,84,88,40,44,48],[1024,9,7,125,127,129,83,83,83]]},
 {"slot": "fringe_control", "family": 320, "set": 0, "version": 101,
  "rows": [[256,4096,4352,3840,4096,8191,8191,-8192,-7168],[512,3755,3989,3520,3755,7850,7850,-7509,-6571]],
  "count2": 1},
 {"slot": "rec_3", "family": 320, "set": 0, "value": [5200,8064,48]},
 {"slot": "rec_13", "family": 320, "set": 0, "version": 101, "value": [96,32]},
 {"slot": "ctc_config", "family": 320, "set": 0, "scaled": [4096,4224,4160,4032,3968,4096], "base_shift": 1,
  "copied": [1024,2048,6144,7168]},
 {"slot": "macc", "family": 320, "set": 0, "entries": [{"type": 0, "key": 0, "matrices": MATRICES},
  {"type": 0, "key": 5000, "matrices": MATRICES}, {"type": 3, "key": 0, "matrices": MATRICES}]},
 {"slot": "long_3", "family": 768, "set": 0, "rows": [[256,0,32,0],[1024,8,55,5],[4096,16,79,11]]},
 {"slot": "long_5", "family": 768, "set": 0, "rows": [[256CURVES,512,512PARAMS],[1024CURVES,512,512PARAMS]]},
 {"slot": "long_11", "family": 768, "set": 0,
  "rows": [[256,4096,4096,4096,4096,4096,4096,1638,3277,4915,6554,4096,4096,1638,3277]]},
 {"set_index": 1, "records": [
  {"slot": "xnr", "family": 320, "set": 0, "rows": [[256,120],[1024,540],[4096,1309]]},
  {"slot": "rec_3", "family": 320, "set": 0, "value": [4800,7680,80]}]},
 {"set_index": 2, "tagged": true, "records": [
  {"slot": "xnr", "family": 320, "set": 0, "rows": [[256,200],[1024,900],[4096,2000]]}]}]})";

std::string expanded(std::string source)
{
    const auto replace_all = [&](std::string_view from, const std::string &to) {
        for (size_t at = source.find(from); at != std::string::npos; at = source.find(from, at + to.size()))
            source.replace(at, from.size(), to);
    };
    std::string matrices = "[[8192,0,0,8192]";
    for (int i = 1; i < 16; ++i)
        matrices += ",[8192,0,0,8192]";
    replace_all("MATRICES", matrices + "]");
    replace_all("CURVES", list_of({{128, 90}}));
    replace_all("PARAMS", list_of({{17, 4095}}));
    return source;
}

struct fault {
    const char *name;
    const char *from; // once in the source
    const char *to;
    const char *line;
};

const fault faults[] = {
    {"key_out_of_order", "[2048,1190],[4096,1745]", "[4096,1745],[2048,1190]",
     "warning keys-descending tuning:xnr[0/0].rows[3].key"},
    {"equal_keys", "[[256,120],[1024,540]", "[[256,120],[256,540]", "warning keys-equal tuning:xnr[0/1].rows[1].key"},
    {"equal_keys_far_apart", "[8192,2375]", "[256,2375]", "warning keys-equal tuning:xnr[0/0].rows[4].key"},
    {"equal_wide_keys", "[1024,8,55,5]", "[256,8,55,5]", "warning keys-equal tuning:long_3[0/0].rows[1].key"},
    {"negative_keys", "[[256,0,32,0],[1024,8", "[[-512,0,32,0],[-256,8",
     "warning key-out-of-range tuning:long_3[0/0].rows[0].key"},
    {"negative_key", "[[256,0,32,0]", "[[-1,0,32,0]", "note key-out-of-range tuning:long_3[0/0].rows[0].key"},
    {"key_above_16_bits", "[4096,16,79,11]", "[65536,16,79,11]",
     "note key-out-of-range tuning:long_3[0/0].rows[2].key"},
    {"keys_without_their_scale", "[[256,200],[1024,900]", "[[1,200],[4,900]",
     "warning key-below-unity tuning:xnr[0/2].rows[0].key"},
    {"no_rows", "[[256,200],[1024,900],[4096,2000]]", "[]", "warning rows-none tuning:xnr[0/2]"},
    {"negative_rows", R"("rows": [[256,0,32,0],[1024,8,55,5],[4096,16,79,11]])",
     R"("bytes": "0000000000000000ffffffff")", "warning rows-none tuning:long_3[0/0]"},
    {"more_rows_than_bytes", "\"rows\": [[256,200],[1024,900],[4096,2000]]", R"("bytes": "03000001c80000048403")",
     "error rows-missing tuning:xnr[0/2]"},
    {"more_bytes_than_rows", "\"rows\": [[256,200],[1024,900],[4096,2000]]", R"("bytes": "01000001c80000048403")",
     "warning rows-unstated tuning:xnr[0/2]"},
    {"bytes_behind", "\"rows\": [[256,200],[1024,900],[4096,2000]]", R"("bytes": "01000001c80000")",
     "note bytes-unread tuning:xnr[0/2]"},
    {"short_values", R"("value": [4800,7680,80])", R"("bytes": "c012001e")", "error record-short tuning:rec_3[0/1]"},
    {"replaced", R"({"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     R"({"slot": "xnr", "family": 320, "set": 0, "rows": [[256,9]]},
        {"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     "warning record-replaced tuning:xnr[0/1]"},
    {"replaced_by_the_other_encoding", R"({"slot": "rec_3", "family": 320, "set": 0, "value": [5200)",
     R"({"slot": "chroma_nr_alt", "family": 320, "set": 0, "rows": [[256,96,64,80,84,88,40,44,48]]},
        {"slot": "rec_3", "family": 320, "set": 0, "value": [5200)",
     "warning record-replaced tuning:chroma_nr[0/0]"},
    {"unknown_id", R"({"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     R"({"id": 700, "bytes": ""}, {"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     "note record-unknown id 700"},
    {"dropped_id", R"({"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     R"({"id": 324, "bytes": ""}, {"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     "note record-dropped id 324"},
    {"refused_id", R"({"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     R"({"id": 339, "bytes": ""}, {"slot": "rec_3", "family": 320, "set": 0, "value": [4800)",
     "error id-refused id 339"},
    {"unread_version", R"("version": 101, "value": [96,32])", R"("version": 107, "value": [96,32])",
     "note version-unknown tuning:rec_13[0/0]"},
    {"second_value_of_version_100", R"("version": 101, "value": [96,32])", R"("version": 100, "value": [96,32])",
     "warning value-ignored tuning:rec_13[0/0].value[1]"},
    {"exponent_of_9_bits", "\"count2\": 1", "\"count2\": 257",
     "warning value-truncated tuning:fringe_control[0/0].count2"},
    {"shift_that_wraps", "[4096,4224,4160,4032,3968,4096], \"base_shift\": 1",
     "[4096,8224,4160,4032,3968,4096], \"base_shift\": 65535",
     "warning value-truncated tuning:ctc_config[0/0].base_shift"},
    {"second_scale", "[1024CURVES,512", "[1024CURVES,500", "warning value-ignored tuning:long_5[0/0].rows[1].scale_a"},
    {"curve_that_clips", "[[256CURVES,512,512", "[[256CURVES,512,65536",
     "warning clipped-everywhere tuning:long_5[0/0].rows[0].curve_b[0]"},
    {"curve_that_wraps", "[[256CURVES,512,512", "[[256CURVES,40000000,512",
     "warning value-wraps tuning:long_5[0/0].rows[0].curve_a[63]"},
    {"negative_parameter", "[4096,16,79,11]", "[4096,16,79,-11]",
     "warning value-negative tuning:long_3[0/0].rows[2].param[2]"},
    {"positive_fringe_fields", "-8192,-7168],[512,3755,3989,3520,3755,7850,7850,-7509",
     "8192,-7168],[512,3755,3989,3520,3755,7850,7850,7509",
     "warning clipped-everywhere tuning:fringe_control[0/0].rows[0].field_10_to_11[0]"},
    {"positive_fringe_field", "-6571", "6571",
     "note clipped-in-rows tuning:fringe_control[0/0].rows[1].field_10_to_11[1]"},
    {"beyond_the_limit", "[[256,1280,1180,1040,960],[4096,615,", "[[256,12800,1180,1040,960],[4096,8192,",
     "warning clipped-everywhere tuning:y_edge_enhancement[1/0].rows[0].param[0]"},
    {"at_the_limit", "[[256,1280,1180,1040,960],[4096,615,", "[[256,8100,1180,1040,960],[4096,8000,",
     "note strength-clipped tuning:y_edge_enhancement[1/0].rows[0].param[0]"},
    {"too_large_to_scale", "960],[4096,615,573,505,468]", "14000],[4096,615,573,505,468]",
     "warning strength-wraps tuning:y_edge_enhancement[1/0].rows[0].param[3]"},
    {"a_digit_less", "[4096,1745]", "[4096,174]", "note gain-not-monotonic tuning:xnr[0/0].rows[3].param"},
    {"a_digit_more", "[8192,2375]", "[8192,23750]", "warning row-jump tuning:xnr[0/0].rows[4].param"},
    {"a_first_digit_less", "[256,160],", "[256,1],", "warning row-jump tuning:xnr[0/0].rows[1].param"},
    {"a_digit_less_between_even_ones", "[[256,120],[1024,540],[4096,1309]]",
     "[[256,1250],[1024,130],[4096,1309],[16384,1320]]", "warning row-jump tuning:xnr[0/1].rows[1].param"},
    {"a_product_that_wraps", "[8192,2375]", "[65535,45000]",
     "warning interpolation-wraps tuning:xnr[0/0].rows[4].param"},
    {"a_set_far_off", "[1024,900]", "[1024,9]", "warning set-jump tuning:xnr[0/2].rows[1].param"},
    {"a_set_of_other_sizes", "[[256,200],[1024,900],[4096,2000]]", "[[256,600],[1024,2700],[4096,6000]]",
     "warning set-jump tuning:xnr[0/2]"},
    {"a_value_of_another_size", "[4800,7680,80]", "[24000,7680,80]", "warning set-jump tuning:rec_3[0/1].value[0]"},
    {"a_value_far_off", "[4800,7680,80]", "[4800,768,80]", "warning set-jump tuning:rec_3[0/1].value[1]"},
    {"bounds_out_of_order", "[1024,2048,6144,7168]", "[1024,6144,2048,7168]",
     "warning curve-not-monotonic tuning:ctc_config[0/0].copied[2]"},
    {"ramp_out_of_order", "1638,3277,4915,6554,", "1638,4915,3277,6554,",
     "warning curve-not-monotonic tuning:long_11[0/0].rows[0].param[8]"},
    {"entry_of_an_unknown_type", "{\"type\": 3", "{\"type\": 5",
     "warning entry-ignored tuning:macc[0/0].entries[2].type"},
    {"base_set_twice", "\"key\": 5000", "\"key\": 0", "warning entry-hidden tuning:macc[0/0].entries[1].key"},
    {"no_base_set_of_key_0", "{\"type\": 0, \"key\": 0,", "{\"type\": 0, \"key\": 1,",
     "warning base-set-missing tuning:macc[0/0]"},
    {"rules_twice", "[{\"kind\": \"frame\", \"op\": \"<=\", \"threshold\": 1920000, \"set_index\": 1},",
     "[]}, {\"slot\": \"rules\", \"rules\": [{\"kind\": \"frame\", \"op\": \"<=\", \"threshold\": 1920000, "
     "\"set_index\": 1},",
     "warning rules-replaced rules"},
    {"rule_for_no_index", "1920000, \"set_index\": 1", "1920000, \"set_index\": 3",
     "warning rule-index-missing rules[0]"},
    {"rule_for_index_0", "1920000, \"set_index\": 1", "1920000, \"set_index\": 0", "note rule-index-0 rules[0]"},
    {"index_without_a_rule", "1920000, \"set_index\": 1", "1920000, \"set_index\": 2",
     "warning index-unused set index 1"},
    {"unknown_kind", "{\"kind\": \"frame\", \"op\": \"<=\"", "{\"kind\": 3, \"op\": \"<=\"",
     "warning rule-never-holds rules[0]"},
    {"unknown_op", "\"op\": \"<=\"", "\"op\": 6", "warning rule-never-holds rules[0]"},
    {"area_below_0", "\"<=\", \"threshold\": 1920000", "\"<\", \"threshold\": 0", "warning rule-never-holds rules[0]"},
    {"area_above_all", "\"threshold\": 4915200", "\"threshold\": 2147483647", "warning rule-never-holds rules[1]"},
    {"area_in_parts_of_a_pixel", "\"<=\", \"threshold\": 1920000", "\"==\", \"threshold\": 1920000.5",
     "warning rule-never-holds rules[0]"},
    {"area_of_no_rectangle", "\"<=\", \"threshold\": 1920000", "\"==\", \"threshold\": 2147483647",
     "warning rule-never-holds rules[0]"},
    {"area_that_all_have", "\"threshold\": 1920000", "\"threshold\": 1e10", "note rule-always-holds rules[0]"},
    {"hidden_rule", "\"<=\", \"threshold\": 1920000", "\">=\", \"threshold\": 100000", "warning rule-hidden rules[1]"},
};

class planted : public testing::TestWithParam<fault> {};

TEST_P(planted, is_found_where_it_is)
{
    const fault &each = GetParam();
    std::string source = good;
    const size_t at = source.find(each.from);
    ASSERT_NE(at, std::string::npos);
    ASSERT_EQ(source.find(each.from, at + 1), std::string::npos);
    source.replace(at, std::string(each.from).size(), each.to);
    const std::vector<std::string> lines = lines_of(findings_in(expanded(source)));
    EXPECT_TRUE(has_line(lines, each.line)) << fmt::format("{}", fmt::join(lines, "\n"));
    EXPECT_FALSE(has_line(lines_of(findings_in(expanded(good))), each.line));
}

INSTANTIATE_TEST_SUITE_P(all, planted, testing::ValuesIn(faults),
                         [](const auto &each) { return std::string(each.param.name); });

TEST(check, good_tunings_have_notes_at_most)
{
    for (const std::string &source : {expanded(good), std::string(qz::tool::sample_tuning)})
        for (const finding &found : findings_in(source))
            EXPECT_EQ(found.level, severity::note) << line_of(found) << ": " << found.what;
    for (const std::string &line : lines_of(findings_in(expanded(good))))
        EXPECT_TRUE(line.starts_with("note block-without-record block ")) << line;
}

// Small values beside zeros say nothing of how many times a record is its neighbour.
TEST(check, records_with_zeros_are_no_jump)
{
    for (const finding &found : findings_in(R"({"records": [
             {"slot": "long_3", "family": 768, "set": 0, "rows": [[256,0,32,0]]},
             {"slot": "long_3", "family": 768, "set": 1, "rows": [[256,8,32,5]]}]})"))
        EXPECT_EQ(found.code->code, "block-without-record") << line_of(found) << ": " << found.what;
}

// What blocks hold without a record is fit to be one.
TEST(check, the_blocks_own_values_have_no_step_back)
{
    const auto row = [](const auto &payload) {
        std::vector<int32_t> values = {256};
        for (const uint32_t value : payload.param)
            values.push_back(static_cast<int32_t>(value));
        return values;
    };
    namespace defaults = qz::defaults;
    const test::bytes container = test::join(
        {test::header(), test::long_rows(774, 1, row(defaults::long_6)), test::long_rows(775, 1, row(defaults::long_7)),
         test::long_rows(779, 1, row(defaults::long_11)), test::long_rows(780, 1, row(defaults::long_12))});
    for (const std::string &line : lines_of(findings_of(container)))
        EXPECT_TRUE(line.starts_with("note block-without-record ")) << line;
}

// Which rules hide others: each a comparison, a threshold and a set index; 1 and 2 have xnr, 3 has rec_3, 4 both.
TEST(check, rules_that_others_hide)
{
    struct hidden_case {
        std::vector<test::rule> rules;
        std::vector<std::string> hidden;
    };
    constexpr uint16_t equal = 1, less = 2, more = 3, most = 4, least = 5, frame = 1, aux = 2;
    const hidden_case cases[] = {
        {{{frame, least, 1, 100}, {frame, least, 2, 200}}, {"rules[1]"}},
        {{{frame, least, 2, 200}, {frame, least, 1, 100}}, {}},
        {{{frame, least, 1, 100}, {aux, least, 2, 200}}, {}},         // small frames take the second
        {{{frame, least, 1, 1}, {aux, least, 2, 200}}, {"rules[1]"}}, // no frame does
        {{{frame, less, 1, 100}, {frame, least, 4, 100}, {aux, most, 2, 9}}, {"rules[2]"}},
        {{{aux, least, 2, 200}, {frame, least, 1, 1}}, {}},               // frames may lack aux_size
        {{{frame, least, 1, 100}, {frame, least, 3, 200}}, {}},           // other slots
        {{{frame, least, 1, 100}, {frame, least, 4, 200}}, {"rules[1]"}}, // one of two slots
        {{{frame, less, 1, 100}, {frame, least, 2, 100}, {frame, more, 4, 0}}, {"rules[2]"}}, // by both together
        {{{frame, most, 1, 100}, {frame, equal, 2, 100}}, {"rules[1]"}},
        {{{frame, less, 1, 100}, {frame, equal, 2, 100}}, {}},
        {{{frame, least, 1, 100}, {frame, more, 2, 99}}, {"rules[1]"}}, // areas are whole
        {{{frame, least, 1, 100}, {frame, more, 2, 98}}, {}},
        {{{frame, least, 9, 100}, {frame, least, 2, 200}}, {}}, // the first takes nothing
    };
    const test::bytes xnr = test::shorts(335, {1, 256, 9});
    const test::bytes rec_3 = test::shorts(323, {1, 2, 3});
    for (const hidden_case &each : cases) {
        const test::bytes container =
            test::join({test::header(), test::rules(each.rules), xnr, rec_3, test::set_container(1, xnr),
                        test::set_container(2, xnr), test::set_container(3, rec_3),
                        test::set_container(4, test::join({xnr, rec_3}))});
        std::vector<std::string> hidden;
        for (const finding &found : findings_of(container))
            if (found.code->code == "rule-hidden")
                hidden.push_back(found.place.name);
        EXPECT_EQ(hidden, each.hidden) << &each - cases;
    }
}

// Places are where a reader of the bytes finds them.
TEST(check, places_are_offsets_in_the_container)
{
    const test::bytes container =
        test::join({test::header(), test::set_container(3, test::shorts(463, {2, 1024, 7, 256, 9}), true)});
    const std::vector<finding> findings = findings_of(container);
    const auto found =
        std::ranges::find(findings, "keys-descending", [](const finding &each) { return each.code->code; });
    ASSERT_NE(found, findings.end());
    EXPECT_EQ(finding_json(*found).dump(),
              R"({"severity":"warning","code":"keys-descending","place":"tuning:xnr[1/3].rows[1].key","record":"xnr",)"
              R"("id":463,"set":1,"set_index":3,"row":1,"offset":56,"byte":70,"what":"found 256 behind 1024","why":")" +
                  std::string(found->code->why) + "\"}");
    EXPECT_EQ(place_text(found->place), "tuning:xnr[1/3].rows[1].key (offset 56, id 463)");
}

// Whatever the bytes, the check ends, and says refused exactly where the library does.
TEST(check, damaged_containers_are_checked_to_their_end)
{
    const byte_buffer sample = pack_container("sample", qz::tool::sample_tuning);
    std::mt19937 random(11); // NOLINT(*-msc51-cpp): the same cases every time
    for (int round = 0; round < 60; ++round) {
        byte_buffer damaged(sample.begin(), sample.begin() + static_cast<int>(random() % sample.size()));
        for (unsigned i = 0; i < random() % 12 && damaged.size() > 4; ++i)
            damaged[4 + random() % (damaged.size() - 4)] = static_cast<uint8_t>(random());
        damaged.shrink_to_fit();
        const std::vector<finding> findings = findings_of(damaged);
        const bool has_refused =
            std::ranges::any_of(findings, [](const finding &each) { return each.code->code == "refused"; });
        EXPECT_EQ(has_refused, library_verdict(damaged) != 0) << round;
        const bool is_explained = std::ranges::any_of(findings, [](const finding &each) {
            return each.code->code == "record-size" || each.code->code == "id-refused" ||
                   each.code->code == "set-container-short" || each.what.starts_with("found status 32");
        });
        EXPECT_EQ(has_refused, is_explained) << round;
    }
}

TEST(check, deep_and_wide_containers_cost_no_stack)
{
    test::bytes records = test::shorts(335, {2, 256, 9, 256, 9});
    for (int i = 0; i < 3000; ++i)
        records = test::set_container(static_cast<uint16_t>(1 + i % 1023), records);
    const std::vector<std::string> lines = lines_of(findings_of(test::join({test::header(), records})));
    EXPECT_TRUE(has_line(lines, "warning keys-equal tuning:xnr[0/1].rows[1].key"));
    EXPECT_TRUE(has_line(lines, "warning index-unused set index 1"));
}

} // namespace
