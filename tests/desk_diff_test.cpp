// Dumps, makernotes and what differs between two files.
#include <nlohmann/json.hpp>

#include "error.h"
#include "makernote_file.h"
#include "program.h"
#include "record_dump.h"
#include "sample.h"

using nlohmann::json;
using namespace qz::tool;

namespace {

class compare_program : public program_test {
  protected:
    void make(const std::string &arguments)
    {
        const result made = run(arguments);
        ASSERT_EQ(made.code, 0) << made.err;
    }
};

TEST_F(compare_program, diff_of_tunings_finds_the_one_record)
{
    std::string changed(sample_tuning);
    const size_t at = changed.rfind("\"base_shift\": 1");
    ASSERT_NE(at, std::string::npos);
    changed.replace(at, 15, "\"base_shift\": 2");
    write("a.json", sample_tuning);
    write("b.json", changed);
    make("tuning pack a.json a.vuxb");
    const result found = run("diff a.vuxb b.json");
    EXPECT_EQ(found.code, 1) << found.err;
    EXPECT_EQ(found.out, "set index 0, set 2, ctc_config\n"
                         "  base_shift                   1 -> 2\n"
                         "1 difference in 1 of 68 parts\n");
    EXPECT_EQ(run("diff a.vuxb a.json").code, 0);

    // The same records in another order are another container, as later ones replace earlier ones.
    const std::string records[] = {R"({"id": 1, "bytes": "00"})", R"({"id": 2, "bytes": "00"})"};
    write("c.json", R"({"records": [)" + records[0] + "," + records[1] + "]}");
    write("d.json", R"({"records": [)" + records[1] + "," + records[0] + "]}");
    const result moved = run("diff c.json d.json");
    EXPECT_EQ(moved.code, 1);
    EXPECT_TRUE(contains(moved.out, "\"set index 0, id 1\" -> \"set index 0, id 2\"")) << moved.out;
    write("e.json", R"({"records": [)" + records[1] + "]}");
    EXPECT_TRUE(contains(run("diff c.json e.json").out, "set index 0, id 1: only in A\n"));
}

TEST_F(compare_program, diff_of_scenes_compares_what_frames_get)
{
    write("a.json", R"({"frames": [{"exposure": {"analog_gain": 2}}, {"contrast": 3}]})");
    write("b.json", R"({"frames": [{"exposure": {"analog_gain": 2, "digital_gain": 1}},
                                   {"exposure": {"analog_gain": 2.5}, "contrast": 3, "scene": {"macc_target": 7}}]})");
    const result found = run("diff --json a.json b.json");
    EXPECT_EQ(found.code, 1) << found.err;
    const json shown = json::parse(found.out);
    std::map<std::string, json> differences;
    for (const json &each : shown.at("differences"))
        differences[each.at("part").get<std::string>() + " " + each.at("field").get<std::string>()] = each;
    EXPECT_FALSE(differences.contains("frame 0 exposure.digital_gain"));
    EXPECT_EQ(differences.at("frame 1 exposure.analog_gain").at("b"), 2.5);
    EXPECT_EQ(differences.at("frame 1 scene.macc_target").at("a"), nullptr);
}

TEST_F(compare_program, diff_gives_2_for_what_it_cannot_compare)
{
    write("scene.json", sample_scene);
    write("tuning.json", sample_tuning);
    write("bad.json", "{");
    for (const char *files : {"scene.json tuning.json", "scene.json missing", "bad.json bad.json", "- -", "scene.json"})
        EXPECT_EQ(run(std::string("diff ") + files).code, 2) << files;
}

TEST_F(compare_program, a_dump_reads_back_as_what_was_run)
{
    make("run --frame all --raw all.aic");
    json ran = json::parse(run("run --frame all --json").out);
    json shown = json::parse(run("record show --json -", "cat all.aic |").out);
    ASSERT_EQ(shown.at("frames").size(), ran.at("frames").size());
    for (size_t i = 0; i < ran.at("frames").size(); ++i) {
        json &blocks = ran["frames"][i]["blocks"];
        // The bytes in use end 40 bytes, 20 entries, before the last table does.
        json &last = blocks.back().at("fields").at("tables").back();
        size_t missing = 20;
        for (size_t row = last.size(); row-- > 0 && missing > 0;) {
            for (size_t column = last[row].size(); column-- > 0 && missing > 0; --missing)
                last[row][column] = nullptr;
        }
        EXPECT_EQ(shown["frames"][i]["blocks"], blocks) << "frame " << i;
    }
    make("run --frame 0 --raw 0.aic");
    const result found = run("diff all.aic 0.aic");
    EXPECT_TRUE(contains(found.out, "frame 1, block 1 white_balance: only in A\n"));
    EXPECT_FALSE(contains(found.out, "frame 0"));
}

TEST_F(compare_program, dumps_are_told_apart_and_compared_to_the_last_byte)
{
    make("run --frame 0 --raw 0.aic");
    byte_buffer fixed = read_file(path("0.aic"));
    byte_buffer overflowing = fixed;
    overflowing[offsetof(aic_record, lens_shading.payload.columns) + 3] = 0x20; // 8 x 2^29 entries are 2^32 bytes
    EXPECT_THROW(read_records("overflowing", overflowing), file_error);

    // 401 records of the fixed blocks are as long as 56 whole records.
    fixed.resize(AIC_FIXED_SIZE);
    byte_buffer many;
    for (int i = 0; i < 401; ++i)
        many.insert(many.end(), fixed.begin(), fixed.end());
    ASSERT_EQ(many.size() % AIC_RECORD_SIZE, 0u);
    EXPECT_EQ(read_records("many", many).size(), 401u);

    write_file(path("a.aic"), fixed);
    byte_buffer whole = fixed;
    whole.resize(AIC_RECORD_SIZE);
    write_file(path("whole.aic"), whole);
    EXPECT_EQ(run("diff a.aic whole.aic").code, 0);
    fixed[190] = 1; // between two blocks
    write_file(path("b.aic"), fixed);
    const result found = run("diff a.aic b.aic");
    EXPECT_EQ(found.code, 1);
    EXPECT_TRUE(contains(found.out, "byte[190]                    0 -> 1")) << found.out;
}

TEST_F(compare_program, dumps_cut_anywhere_are_refused_with_an_offset)
{
    make("run --frame all --raw all.aic");
    make("run --frame 1 --makernote all.mkn");
    const byte_buffer records = read_file(path("all.aic"));
    const byte_buffer makernote = read_file(path("all.mkn"));
    size_t whole_frames = 0;
    for (size_t size = 0; size <= size_t{2} * 5728; size += 8) {
        try {
            read_records("cut", byte_view(records).first(size));
            ++whole_frames;
        } catch (const file_error &error) {
            EXPECT_TRUE(contains(error.what(), "cut: offset ")) << error.what();
        }
    }
    EXPECT_EQ(whole_frames, 4); // two frames, each before and after its lens shading block
    for (size_t size = 0; size < makernote.size(); ++size)
        EXPECT_THROW(read_makernote("cut", byte_view(makernote).first(size)), file_error);
    for (size_t at : {0u, 4u, 8u, 24u}) {
        byte_buffer damaged = makernote;
        damaged[at] ^= 0x80;
        EXPECT_THROW(read_makernote("damaged", damaged), file_error) << at;
    }
}

TEST_F(compare_program, a_makernote_holds_the_blocks_of_every_frame)
{
    make("run --frame 1 --makernote all.mkn");
    const json shown = json::parse(run("makernote show --json all.mkn").out);
    EXPECT_EQ(shown.at("records").at(0).at("text"), "QZ_ISP 2.6.1 v2.0_012.000_002");
    EXPECT_EQ(shown.at("records").at(0).at("key").get<std::string>().size(), 16u);
    std::vector<json> levels;
    for (const json &record : shown.at("records")) {
        if (record.at("name") == 514)
            levels.push_back(record.at("values"));
    }
    ASSERT_EQ(levels.size(), 2u);
    const json blocks = json::parse(run("run --frame 1 --json").out)["frames"][0]["blocks"];
    json expected = blocks[17]["fields"]["level"];
    expected.push_back(18); // the next block's id
    EXPECT_EQ(levels[1], expected);
}

} // namespace
