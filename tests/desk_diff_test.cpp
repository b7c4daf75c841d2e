// What differs between two files.
#include <gtest/gtest.h>

#include "desk/diff/differences.h"
#include "desk/record/dump.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

std::string differences(const byte_buffer &a, const byte_buffer &b)
{
    std::string text;
    for (const part_difference &part : compare_files(read_compared("a", a), read_compared("b", b))) {
        text += part.part + (part.only_in.empty() ? "" : " only in " + std::string(part.only_in)) + ":";
        for (const difference &each : part.values)
            text += " " + each.field + each.index + " " + each.a.value_or("-") + ">" + each.b.value_or("-");
        text += "\n";
    }
    return text;
}

std::string tuning(const std::string &records)
{
    return R"({"records": [)" + records + "]}";
}

std::string scene_of(const std::string &frames)
{
    return R"({"frames": [)" + frames + "]}";
}

TEST(diff, tells_every_value_at_its_place)
{
    const std::string one = R"({"id": 1, "bytes": "00"})";
    const std::string two = R"({"id": 2, "bytes": "00"})";
    const std::string xnr = R"({"slot": "xnr", "family": 320, "set": 1, "rows": )";
    const std::string long_bytes(32, '0');
    const std::tuple<std::string, std::string, const char *> cases[] = {
        {tuning(one), tuning(one), ""},
        // The same records in another order are another container, as later ones replace earlier ones.
        {tuning(one + "," + two), tuning(two + "," + one),
         "order: part[1] \"set index 0, id 1\">\"set index 0, id 2\"\n"},
        {tuning(one + "," + two), tuning(two), "set index 0, id 1 only in A: id 1>- version 100>- bytes[0] \"00\">-\n"},
        {tuning(two), tuning(two + "," + two),
         "set index 0, id 2 (2 of this place) only in B: id ->2 version ->100 bytes[0] ->\"00\"\n"},
        {tuning(R"({"id": 1, "bytes": ")" + long_bytes + R"(11"})"),
         tuning(R"({"id": 1, "bytes": ")" + long_bytes + R"(12"})"), "set index 0, id 1: bytes[16] \"11\">\"12\"\n"},
        {tuning(xnr + "[[256, 1], [512, 2]]}"), tuning(xnr + "[[256, 1], [512, 3], [513, 4]]}"),
         "set index 0, set 1, xnr: rows[1][1] 2>3 rows[2][0] ->513 rows[2][1] ->4\n"},
        {tuning(R"({"set_index": 3, "records": [)" + xnr + "[]}]}"),
         tuning(R"({"set_index": 3, "version": 7, "records": [)" + xnr + "[[1, 2]]}]}"),
         "set index 3: version 100>7\nset index 3, set 1, xnr: rows[0][0] ->1 rows[0][1] ->2\n"},
        {tuning(R"({"slot": "rules", "rules": [{"kind": 1, "op": 1, "threshold": 1, "set_index": 1}]})"),
         tuning(R"({"slot": "rules", "rules": [{"kind": 1, "op": "<", "threshold": 1, "set_index": 1}]})"),
         "rules: rules[0].op \"==\">\"<\"\n"},
        // Scenes are compared by what frames get.
        {scene_of(R"({"exposure": {"analog_gain": 2}}, {"contrast": 3})"),
         scene_of(R"({"exposure": {"analog_gain": 2, "digital_gain": 1}}, {"exposure": {"analog_gain": 2.5},
                      "contrast": 3})"),
         "frame 1: exposure.analog_gain 2>2.5\n"},
        {scene_of("{}"), scene_of(R"({"name": "a\n", "aux_size": {"height": 7}, "effects": ["macc_2"]})"),
         "frame 0: name \"\">\"a\\n\" effects 0>2 aux_size.unused[0] ->0 aux_size.unused[1] ->0 aux_size.width ->0 "
         "aux_size.height ->7\n"},
        {scene_of(R"({"gamma": {"curve": [null, [0, 1], null]}, "selection_list": [7]})"),
         scene_of(R"({"gamma": {"curve": [null, [0, 0.5], null]}, "selection_list": [8]})"),
         "frame 0: gamma.curve[1][1] 1>0.5 selection_list[0] 7>8\n"},
        {scene_of(R"({"lsc": {"width": 1, "height": 2, "enable": 0, "grid": [[[1], [2]], null, null, null]}})"),
         scene_of(R"({"lsc": {"width": 2, "height": 1, "enable": 1, "grid": [[[1, 3]], null, null, null]}})"),
         "frame 0: lsc.enable 0>1 lsc.width 1>2 lsc.height 2>1 lsc.grid[0][1] 2>3\n"},
        {R"({"grid": {"width": 1, "height": 2}, "frames": [{}]})",
         R"({"grid": {"width": 3, "height": 4}, "frames": [{}], "cmc": {"entry_table": [[1, 2, 3, 4]]}})",
         "sensor: grid.width 1>3 grid.height 2>4 cmc.entry_table[0][0] ->1 cmc.entry_table[0][1] ->2 "
         "cmc.entry_table[0][2] ->3 cmc.entry_table[0][3] ->4\n"},
    };
    for (const auto &[a, b, expected] : cases)
        EXPECT_EQ(differences(bytes_of(a), bytes_of(b)), expected) << a;
    EXPECT_EQ(differences(pack_container("a", tuning(one)), bytes_of(tuning(one))), "");
    EXPECT_EQ(error_of([&] { differences(bytes_of(tuning(one)), bytes_of(scene_of("{}"))); }),
              "b: found a scene, expected a tuning as in a");
}

TEST(diff, compares_records_to_the_last_byte)
{
    const std::vector<record_snapshot> records = sample_records();
    byte_buffer first;
    append_record(first, records[0]);
    byte_buffer both = first;
    append_record(both, records[1]);
    const std::string only = differences(both, first);
    EXPECT_TRUE(contains(only, "frame 1, block 1 white_balance only in A: size 28>- shift 2>- gain[0] "))
        << only.substr(0, 200);
    EXPECT_FALSE(contains(only, "frame 0"));

    byte_buffer fixed(first.begin(), first.begin() + AIC_FIXED_SIZE);
    byte_buffer whole = fixed;
    whole.resize(AIC_RECORD_SIZE);
    EXPECT_EQ(differences(fixed, whole), "");
    byte_buffer changed = fixed;
    changed[190] ^= 1; // between two blocks
    EXPECT_TRUE(differences(fixed, changed).starts_with("bytes without a name: byte[190] "));
    changed[8] ^= 1;
    first[AIC_FIXED_SIZE + AIC_LENS_SHADING_TABLES_OFFSET + 2] ^= 1;
    EXPECT_TRUE(differences(fixed, changed).starts_with("frame 0, block 1 white_balance: shift "));
    EXPECT_TRUE(contains(differences(both, first), "frame 0, block 28 lens_shading: tables[0][0][1] "));
}

} // namespace
