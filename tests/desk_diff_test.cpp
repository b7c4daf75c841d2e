// What differs between two files.
#include <algorithm>
#include <memory>

#include <gtest/gtest.h>

#include "desk/diff/differences.h"
#include "desk/makernote/file.h"
#include "desk/record/dump.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

std::string differences(const byte_buffer &a, const byte_buffer &b, const std::vector<std::string> &settings = {})
{
    std::string text;
    for (const part_difference &part : compare_files(read_compared("a", a), read_compared("b", b, settings))) {
        text += part.part + (part.title.empty() ? "" : " (" + part.title + ")");
        text += (part.only_in.empty() ? "" : " only in " + std::string(part.only_in)) + ":";
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
        // A frame is called by its name where both scenes have the same.
        {scene_of(R"({"name": "day"}, {"name": "dusk"})"),
         scene_of(R"({"name": "day", "hue": 1}, {"name": "dawn", "hue": 0})"),
         "frame 0 (day): hue 0>1\nframe 1: name \"dusk\">\"dawn\"\n"},
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

// At any depth once: also where set containers are kept as bytes.
TEST(diff, tells_a_nested_value_once)
{
    const auto nested = [](unsigned depth, uint8_t last) {
        byte_buffer bytes(24);
        std::ranges::copy(std::string_view("VUXB"), bytes.begin());
        for (unsigned left = depth; left > 0; --left) {
            const unsigned size = 8 * left + 9; // with those inside and a record of one byte
            for (const unsigned byte : {size & 255, size >> 8, 0u, 0u, 100u, 0u, 1u, 252u})
                bytes.push_back(static_cast<uint8_t>(byte));
        }
        for (const unsigned byte : {9u, 0u, 0u, 0u, 100u, 0u, 188u, 2u, unsigned{last}})
            bytes.push_back(static_cast<uint8_t>(byte));
        return bytes;
    };
    EXPECT_EQ(differences(nested(2, 0), nested(2, 9)), "set index 1, id 700: bytes[0] \"00\">\"09\"\n");
    EXPECT_EQ(differences(nested(64, 0), nested(64, 9)), "set index 1, id 700: bytes[0] \"00\">\"09\"\n");
    EXPECT_EQ(differences(nested(65, 0), nested(65, 9)),
              "set index 1, id 64513: bytes[0] \"090000006400bc0200\">\"090000006400bc0209\"\n");
    EXPECT_EQ(differences(nested(70, 9), nested(70, 9)), "");
}

TEST(diff, gives_values_to_the_second_file)
{
    const std::string xnr = tuning(R"({"slot": "xnr", "family": 320, "set": 1, "rows": [[256, 1], [512, 2]]})");
    for (const byte_buffer &file : {bytes_of(xnr), pack_container("a", xnr)})
        EXPECT_EQ(differences(file, file, {"tuning:xnr.rows[1].param=7", "tuning:xnr.rows[0].key=3"}),
                  "set index 0, set 1, xnr: rows[0][0] 256>3 rows[1][1] 2>7\n");
    const byte_buffer scene = bytes_of(scene_of(R"({"hue": 3}, {"hue": 0}, {"hue": 4})"));
    EXPECT_EQ(differences(scene, scene, {"hue=3"}), "frame 1: hue 0>3\nframe 2: hue 4>3\n");
}

TEST(diff, tells_makernotes_frame_by_frame)
{
    const std::unique_ptr<qz_mkn, void (*)(qz_mkn *)> note(qz_mkn_create(), qz_mkn_destroy);
    sample_records(note.get());
    const byte_buffer a = save_makernote(note.get());
    const int32_t extra[] = {-5, 6};
    qz_mkn_add_record(note.get(), QZ_MKN_I32, 7, extra, 2, "key");
    byte_buffer b = save_makernote(note.get());
    EXPECT_EQ(differences(a, b),
              "frame 3, record 7 only in B: format ->\"i32\" key ->\"key\" value[0] ->-5 value[1] ->6\n");

    b = a;
    b[b.size() - 16] ^= 1; // the frame's geometry ends with eight 16-bit numbers
    EXPECT_TRUE(differences(a, b).starts_with("frame 3, record 544 frame geometry: value[0] "));
    b = a;
    b[sizeof(qz_mkn_saved_header) + sizeof(qz_mkn_saved_record)] = 'q';
    EXPECT_EQ(differences(a, b), "start, record 538 version: text \"QZ_ISP 2.6.1 v2.0_012.000_002\">"
                                 "\"qZ_ISP 2.6.1 v2.0_012.000_002\"\n");
    b = a;
    b[offsetof(qz_mkn_saved_header, dropped)] = 1;
    EXPECT_EQ(differences(a, b), "makernote: dropped 0>1\n");
    b = a;
    b[offsetof(qz_mkn_saved_header, unused)] = 1;
    EXPECT_EQ(differences(a, b), "bytes without a name: byte[16] 0>1\n");
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
