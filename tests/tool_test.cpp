// The program from outside: its commands, output, errors and exit codes.
#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/program.h"
#include "tools/base/report_page.h"

using nlohmann::json;

namespace {

class program : public program_test {
  protected:
    json frame(const std::string &arguments) const
    {
        const result made = run("run --json " + arguments);
        EXPECT_EQ(made.code, 0) << made.err;
        return json::parse(made.out).at("frames").at(0);
    }
};

std::map<std::string, json> fields_by_block(const json &frame)
{
    std::map<std::string, json> blocks;
    for (const json &block : frame.at("blocks"))
        blocks[block.at("name")] = block.at("fields");
    return blocks;
}

TEST_F(program, runs_files_of_its_user)
{
    write("tuning.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 10], [1024, 40]]}]})");
    write("scene.json", R"({"frames": [{"nr_mode": 1, "exposure": {"analog_gain": 2.5}}]})");
    ASSERT_EQ(run("tuning pack tuning.json tuning.vuxb").code, 0);
    // Gain 640 lies half way between the two keys.
    for (const char *tuning : {"tuning.vuxb", "tuning.json", "- < tuning.vuxb"}) {
        std::map<std::string, json> fields =
            fields_by_block(frame(std::string("--scene scene.json --tuning ") + tuning));
        EXPECT_EQ(fields["xnr"]["param"], 25) << tuning;
        EXPECT_EQ(fields["temporal_noise_reduction"]["param"], (json{32768, 32, 32}));
        EXPECT_FALSE(fields.contains("lens_shading"));
    }
    EXPECT_EQ(run("run --raw record --frame preview").code, 0);
    EXPECT_EQ(text_of("record"), run("run --raw - --frame 0").out);
}

TEST_F(program, shows_what_is_wrong_with_a_container)
{
    write("good.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": []},
                                       {"slot": "xnr", "family": 320, "set": 0, "rows": [[1, 2]]},
                                       {"id": 339, "bytes": ""}, {"id": 700, "bytes": "00"}]})");
    const std::string why = "offset 48, id 339: found id offset 19 of the 320 family, expected 1 to 18 or 20\n";
    const std::string verdict =
        "the library refuses it with status 8: a malformed record, or one that no container may have\n";
    const result packed = run("tuning pack good.json bad.vuxb");
    EXPECT_EQ(packed.code, 1);
    EXPECT_EQ(packed.err, "qz-isp: good.json: " + verdict + "qz-isp: good.json: " + why);
    EXPECT_FALSE(std::filesystem::exists(path("bad.vuxb")));
    ASSERT_EQ(run("tuning pack --force good.json bad.vuxb").code, 0);
    const result shown = run("tuning show bad.vuxb");
    EXPECT_EQ(shown.code, 1);
    EXPECT_TRUE(contains(shown.out, "replaced by the one at 34"));
    EXPECT_TRUE(contains(shown.out, "skipped"));
    EXPECT_EQ(shown.err, "qz-isp: bad.vuxb: " + why + "qz-isp: bad.vuxb: " + verdict);
    const result used = run("run --tuning bad.vuxb");
    EXPECT_EQ(used.code, 1);
    EXPECT_EQ(used.err, "qz-isp: bad.vuxb: " + why);
    EXPECT_EQ(used.out, "");
}

TEST_F(program, shows_the_values_of_a_tuning)
{
    write("tuning.json", R"({"records": [
        {"slot": "rules", "rules": [{"kind": "aux_size", "op": "<", "threshold": 0.5, "set_index": 1}]},
        {"slot": "xnr", "family": 320, "set": 0, "rows": [[1, 2]]},
        {"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 10], [1024, 40000]]},
        {"set_index": 1, "records": [{"slot": "xnr", "family": 320, "set": 2, "rows": []}, {"id": 700, "bytes": "00ff"}]},
        {"slot": "rec_13", "family": 768, "set": 1, "value": [7, 80]},
        {"slot": "edge_enhancement", "family": 320, "set": 0, "bytes": "0300000101000200030000ab"},
        {"slot": "fringe_control", "family": 320, "set": 0, "version": 102, "rows": [[1, 2, 3, 4, 5, 6, 7, -8, 9]],
         "count2": 10, "extra": [[11, 12, 13, 14]]}]})");
    ASSERT_EQ(run("tuning pack tuning.json tuning.vuxb").code, 0);
    const std::pair<const char *, const char *> cases[] = {
        {"'xnr[0/0]'", ": offset 70, id 335, version 100, 2 rows\n"
                       "        key  param\n        256     10\n       1024  40000\n"},
        {"'xnr[2/1]'", ": offset 96, id 399, version 100, 0 rows\n"},
        {"rec_13", "rec_13[1/0]: offset 116, id 911, version 100\n       value                  7 80\n"},
        {"911", "rec_13[1/0]: offset 116, "},
        {"700", "700[-/1]: offset 106, id 700, version 100\n       bytes                 00ff\n"},
        {"rules", " 1 rules\n           kind  op  threshold  set_index\n       aux_size   <        0.5          1\n"},
        // One row of the three that it states, then bytes that are none.
        {"edge_enhancement", "       key  param[0]  param[1]  param[2]\n       256         1         2         3\n"
                             "       bytes                 00ab\n"},
        {"fringe_control", "\n       count2                10\n       extra\n"
                           "       field_0_to_3[0]  field_0_to_3[1]  field_0_to_3[2]  field_0_to_3[3]\n"
                           "                    11               12               13               14\n"},
    };
    const std::string all = run("tuning show --values tuning.vuxb").out;
    EXPECT_TRUE(contains(all, "xnr[0/0]: offset 56, "));
    for (const auto &[record, text] : cases) {
        for (const char *file : {"tuning.vuxb ", "tuning.json "}) {
            const result made = run(std::string("tuning show ") + file + record);
            EXPECT_EQ(made.code, 0) << record;
            EXPECT_TRUE(contains(made.out, text)) << file << record << "\n" << made.out;
            EXPECT_TRUE(contains(all, made.out)) << record;
        }
    }
    EXPECT_EQ(json::parse(run("tuning show --json tuning.vuxb 'xnr[0/0]'").out)["rows"],
              json::parse("[[256,10],[1024,40000]]"));
}

TEST_F(program, explains_rules_that_have_nothing_to_choose_from)
{
    write("tuning.json", R"({"records": [
        {"slot": "rules", "rules": [{"kind": "frame", "op": ">=", "threshold": 1, "set_index": 0},
                                    {"kind": "frame", "op": ">=", "threshold": 1, "set_index": 4}]},
        {"slot": "xnr", "family": 320, "set": 0, "rows": [[1, 2]]}]})");
    const std::string told = run("run --explain --tuning tuning.json --frame preview").out;
    EXPECT_TRUE(contains(told, "1: frame area 1228800 >= 1: not set index 4, which the tuning does not have\n"));
    EXPECT_TRUE(contains(told, "none is followed: the tuning has one set index\n")) << told;
    const json explained = frame("--explain --tuning tuning.json --frame preview");
    const json &blocks = explained.at("blocks");
    const auto xnr = std::ranges::find(blocks, "xnr", [](const json &block) { return block.at("name"); });
    EXPECT_EQ(xnr->at("origin").at("record").at("rule"), nullptr);
}

TEST_F(program, lists_names_that_it_takes)
{
    write("scene.json", R"({"frames": [{"name": "dusk", "lsc": {"width": 1, "height": 1, "enable": 0,
                                        "grid": [null, null, null, null]}}]})");
    std::istringstream lines(run("sweep --list --scene scene.json").out);
    std::map<std::string, int> counts;
    for (std::string what, name, rest; lines >> what >> name && std::getline(lines, rest);) {
        if (what == "frame" || counts[what]++ % 16 != 0)
            continue;
        const std::string asked = what == "field" ? "'" + name + "'" : "checksum --set '" + name + "=1'";
        EXPECT_EQ(run("get --scene scene.json " + asked).code, 0) << name;
    }
    for (const char *what : {"input", "tuning", "field"})
        EXPECT_GT(counts[what], 25) << what;
}

TEST_F(program, checks_a_tuning)
{
    write("bad.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 9], [256, 9]]},
                                      {"slot": "rec_3", "family": 320, "set": 0, "bytes": "01"}]})");
    for (const auto &[options, code] : {std::pair("", 1), {" --fail-on note", 1}, {" --severity error", 1}})
        EXPECT_EQ(run(std::string("tuning check bad.json") + options).code, code) << options;
    const result shown = run("tuning check --severity warning bad.json");
    EXPECT_EQ(shown.out, "warning: tuning:xnr[0/0].rows[1].key (offset 24, id 335): keys-equal: found 256, the key of "
                         "row 0\n"
                         "    Of rows with equal keys the library takes the first at every gain: the others are never "
                         "used.\n"
                         "error: tuning:rec_3[0/0] (offset 42, id 323): record-short: found size 9, expected 14\n"
                         "    The library reads the values that the record ends before as 0.\n"
                         "bad.json: 1 error, 1 warning, 20 notes; the library accepts it\n");
    EXPECT_EQ(shown.err, "");
    const json checked = json::parse(run("tuning check --json - < bad.json").out);
    EXPECT_EQ(checked.at("summary"), (json{{"errors", 1}, {"warnings", 1}, {"notes", 20}}));
    EXPECT_EQ(checked.at("verdict"), (json{{"status", 0}, {"meaning", "accepted"}}));
    EXPECT_EQ(checked.at("findings").size(), 22u);

    write("odd.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 9], [256, 9]]}]})");
    for (const auto &[least, code] : {std::pair("error", 0), {"warning", 1}, {"note", 1}})
        EXPECT_EQ(run(std::string("tuning check odd.json --severity error --fail-on ") + least).code, code) << least;
    EXPECT_EQ(run("tuning check odd.json --fail-on worse").code, 2);
    const result other = run("tuning check -", "printf other |");
    EXPECT_EQ(other.code, 1);
    EXPECT_TRUE(contains(other.out, "error: container: refused: found status 32: no container\n"));

    // Of many findings the first are shown, and how many there are.
    std::string rows = "[1, 1]";
    for (int i = 0; i < 30; ++i)
        rows += ", [1, 1]";
    write("many.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [)" + rows + "]}]}");
    const result many = run("tuning check many.json");
    EXPECT_TRUE(contains(many.out, "22 more of keys-equal, --all shows them\n"));
    EXPECT_TRUE(contains(run("tuning check --all many.json").out, "rows[30].key (offset 24, id 335): keys-equal"));
}

TEST_F(program, reports_errors_with_exit_codes)
{
    write("short", "VUXB");
    write("other", "PK34567890123456789012345678");
    write("scene.json", R"({"frames": [{"name": "a"}, {"hue": 200}]})");
    write("rows.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 70000]]}]})");
    write("good.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 7]]}]})");
    write("refused.json", R"({"records": [{"id": 320, "bytes": "00"}]})");
    write("name.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "row": []}]})");
    write("family.json", R"({"records": [{"slot": "xnr", "family": 768, "set": 0, "rows": []}]})");
    write("cut.json", R"({"records": [{"slot": "rec_3", "family": 320, "set": 0, "bytes": "0102"}]})");
    write("bare.json", R"({"frames": [{}]})");
    write("empty.json", R"({"records": []})");
    write("note", std::string("QMKN\1\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0", 24));
    write("tuning.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": []},
                                         {"slot": "xnr", "family": 320, "set": 1, "rows": []}]})");
    write("nested.json", R"({"records": [{"set_index": 1, "records": [{"slot": "zoom"}]}]})");
    const std::tuple<const char *, int, const char *> cases[] = {
        {"", 2, "\n  run "},
        {"rnu", 2, "qz-isp: found rnu, expected one of run, get, report, "},
        {"run --fame 0", 2, "qz-isp: run: found --fame, expected one of --help, "},
        {"sweep --ovr gain=1", 2, "; did you mean --over?"},
        {"help tuning sho", 2, "qz-isp: tuning: found sho, expected one of pack, show, check; did you mean show?"},
        {"run --set hue=128", 2, "qz-isp: --set hue=128: found \"128\", expected an integer from -128 to 127"},
        {"get x --set tuning:xn.rows[0].key=1", 2, "the record \"xn\", expected one of chroma_nr, "},
        {"get x --set tuning:xnr.rows[0].key=1", 2, "found xnr, expected its set and set index: xnr[0/0], xnr[0/2]\n"},
        {"get x --set tuning:xnr[1/0].rows[0].key=1", 2, "found xnr[1/0], expected its set and set index: xnr[0/0]"},
        {"get x --set tuning:xnr[0/0].rows[7].key=1", 2, "found \"rows[7].key\", expected rows[0]. to rows["},
        {"get x --set tuning:xnr[0/0].rows[0].parm=1", 2, "expected one of key, param; did you mean param?"},
        {"get x --set tuning:rec_13[0/0].value=1", 2,
         "found the field \"value\", expected one of value[0] to value[1]"},
        {"get x --set tuning:rec_3.value2=1 --tuning cut.json", 2,
         "found a record that ends before, expected one that"},
        {"get hue", 2, "qz-isp: --fields \"hue\": found the block \"hue\""},
        {"get block1.shift --frame all", 2, "--frame: found 4 frames, expected one"},
        {"run --json --all", 2, "excludes"},
        {"run --raw x --json", 2, "excludes"},
        {"run --frame 4", 2, "--frame: found \"4\", expected 0 to 3, a frame's name, or all"},
        {"run --tuning - --scene - < short", 2, "found standard input for both"},
        {"run --tuning ''", 1, "qz-isp: : cannot be opened"},
        {"run --frame ''", 2, "--frame: found \"\""},
        {"tuning", 2, "qz-isp: tuning: found no command, expected one of pack, show, check"},
        {"tuning pack rows.json", 2, "OUT is required"},
        {"tuning show nested.json --values --json", 2, "excludes"},
        {"tuning show tuning.json xn", 1, "tuning.json: record xn: found none of that name, expected one of xnr; did"},
        {"tuning show tuning.json xnr", 1, "record xnr: found xnr, expected its set and set index: xnr[0/0], xnr[1/0]"},
        {"tuning show tuning.json xnr[0/0].key", 1, "found \".key\", expected a record, not a value of it"},
        {"run --tuning absent", 1, "qz-isp: absent: cannot be opened: No such file"},
        {"tuning show short", 1, "qz-isp: short: found 4 bytes, expected a container of at least 24 bytes"},
        {"run --tuning other", 1, "qz-isp: other: offset 0: found the bytes 504b3334, expected the tag \"VUXB\""},
        {"run --scene scene.json", 1,
         "qz-isp: scene.json: frames[1].hue: found 200, expected an integer from -128 to 127"},
        {"tuning pack rows.json x", 1,
         "rows.json: records[0].rows[0][1]: found 70000, expected an integer from 0 to 65535"},
        {"tuning pack name.json x", 1, "name.json: records[0]: found the name \"row\", expected one of "},
        {"tuning pack family.json x", 1, "records[0].family: found 768, expected a family that has the slot xnr"},
        {"tuning pack nested.json x", 1, "records[0].records[0].slot: found \"zoom\", expected one of rules, rec_1, "},
        {"tuning pack - x < other", 1, "qz-isp: standard input: line 1, column 1: syntax error"},
        {"run --raw /dev/full", 1, "qz-isp: /dev/full: cannot be written: No space left"},
        {"run --scene .", 1, "qz-isp: .: cannot be read: Is a directory"},
        {"diff - -", 2, "qz-isp: found standard input for both files, expected it for one"},
        {"diff scene.json", 2, "found one file, expected two, or --set"},
        {"diff bare.json absent", 1, "qz-isp: absent: cannot be opened"},
        {"diff rows.json absent", 1, "qz-isp: rows.json: records[0].rows[0][1]: found 70000"},
        {"diff scene.json other", 1, "qz-isp: scene.json: frames[1].hue"},
        {"diff bare.json --set hue=200", 2, "qz-isp: --set hue=200: found \"200\", expected an integer from -128"},
        {"diff bare.json --set tuning:xnr.param=1", 2, "found a value of a tuning, expected an input, for a scene"},
        {"diff empty.json --set hue=1", 2, "found the name \"hue\", expected one that begins with tuning:"},
        {"diff note --set hue=1", 2, "qz-isp: --set hue=1: found note, a makernote, expected a tuning or a scene"},
        {"diff note bare.json", 1, "qz-isp: bare.json: found a scene, expected a makernote as in note"},
        {"compare", 2, "compare: found no tuning and no --change, expected NEW or --change"},
        {"compare empty.json", 2, "compare: found one tuning and no --change, expected NEW or --change"},
        {"compare - -", 2, "compare: found standard input for several files, expected it for one"},
        {"compare empty.json rows.json", 1, "qz-isp: rows.json: records[0].rows[0][1]: found 70000"},
        {"compare short empty.json", 1, "qz-isp: short: found 4 bytes, expected a container"},
        {"compare empty.json refused.json", 1, "qz-isp: refused.json: offset 24, id 320: "},
        {"compare empty.json empty.json --scene scene.json", 1, "qz-isp: scene.json: frames[1].hue: found 200"},
        {"compare empty.json empty.json --frame 4", 2, "--frame: found \"4\", expected 0 to 3"},
        {"compare empty.json empty.json --frame all --over gain=1", 2, "--frame: found 4 frames, expected one"},
        {"compare empty.json empty.json --over gain", 2, "--over gain: found no \"=\""},
        {"compare --change hue", 2, "qz-isp: --change hue: found no \"=\", expected NAME=VALUE"},
        {"compare --change gain=2 --over gain=1..4", 2, "qz-isp: --change gain=2: found a value that --over gain sets"},
        {"compare empty.json good.json --set tuning:xnr.rows[0].param=1", 2,
         " in empty.json: found the record \"xnr\""},
        {"compare --change hue=1 --json --all", 2, "excludes"},
        {"sweep", 2, "--over is required"},
        {"sweep --over gain", 2, "qz-isp: --over gain: found no \"=\""},
        {"sweep --over gain=1 --fields x", 2, "qz-isp: --fields \"x\": found the block \"x\""},
        {"sweep --over gain=1 --format json", 2, "--format: json not in {csv,jsonl}"},
        {"sweep --over gain=1 --format jsonl --no-header", 2, "--no-header: found JSON lines, expected CSV"},
        {"sweep --over gain=1 --shard 0/2", 2, "qz-isp: --shard: found \"0/2\", expected I/N"},
        {"sweep --over gain=1 --jobs 0", 2, "--jobs: "},
        {"sweep --over gain=1 --plot x --output x", 2, "--plot: found x for the rows too, expected another file"},
        {"sweep --over gain=1 --plot - --format csv", 2, "--plot: found - for the rows too"},
        {"sweep --over gain=1 --output /dev/full", 1, "qz-isp: /dev/full: cannot be written: No space left"},
    };
    for (const auto &[arguments, code, error] : cases) {
        const result made = run(arguments);
        EXPECT_EQ(made.code, code) << arguments;
        EXPECT_TRUE(contains(made.err, error)) << arguments << "\n" << made.err;
        EXPECT_EQ(made.out, "") << arguments;
    }
}

// Gain 640 lies half way between the two keys; the line of 257 entries from 0 to 4095 without brightness.
TEST_F(program, report_holds_the_frame_s_curves_and_its_gamma_without_brightness)
{
    write("tuning.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 10], [1024, 40]]}]})");
    write("scene.json", R"({"frames": [{"nr_mode": 1, "exposure": {"analog_gain": 2.5}, "gamma": {}, "gamma_257": 1,
                                        "brightness": 127, "name": "</script><!-- <i>\u2028\u00ff"}]})");
    const result made = run("report - --tuning tuning.json --scene scene.json");
    const qz::tool::report_page page = qz::tool::built_in_page;
    if (page.before.empty()) {
        EXPECT_EQ(made.code, 1);
        EXPECT_TRUE(contains(made.err, "make report-bundle"));
        GTEST_SKIP() << "built without the page";
    }
    ASSERT_EQ(made.out.substr(0, page.before.size()), page.before);
    ASSERT_TRUE(made.out.ends_with(page.after));
    const size_t end = made.out.find("</script>", page.before.size()); // of the page, or before the module
    const std::string text = made.out.substr(page.before.size(), end - page.before.size());
    // Nothing that ends the page's data.
    EXPECT_EQ(text.find_first_of("<\n"), std::string::npos);
    EXPECT_TRUE(std::ranges::all_of(text, [](char character) { return character >= ' ' && character <= '~'; }));

    const json data = json::parse(text);
    const json &frame = data.at("frames").at(0);
    EXPECT_EQ(frame.at("name"), "</script><!-- <i>\u2028\u00ff");
    EXPECT_EQ(frame.at("records"), (json{{{"slot", "xnr"}, {"curves", 0}, {"at_gain", {25}}}}));
    const json &curves = data.at("curves").at(0);
    EXPECT_EQ(curves.at("keys"), (json{256, 1024}));
    EXPECT_EQ(curves.at("gains").front(), 256);
    EXPECT_EQ(curves.at("gains").back(), 1024);
    EXPECT_EQ(curves.at("columns").at(0).front(), 10);
    EXPECT_EQ(curves.at("columns").at(0).back(), 40);
    EXPECT_EQ(frame.at("plain_gamma").at(0).at(128), 2047);
    EXPECT_GT(fields_by_block(frame)["gamma_0"]["table"][128], 3000);
}

TEST(report_page, that_is_not_there_is_asked_for)
{
    EXPECT_THROW(qz::tool::expect_page({}, "report"), std::runtime_error);
}

TEST_F(program, diff_answers_with_its_exit_code)
{
    write("a.json", R"({"frames": [{}]})");
    write("b.json", R"({"frames": [{"hue": 1, "colour": {"ccm": [9, 8, 7, 6, 5, 4, 3, 2, 1]}}, {"name": "late"}]})");
    const result found = run("diff a.json - < b.json");
    EXPECT_EQ(found.code, 1) << found.err;
    EXPECT_EQ(found.out.substr(0, 48), "frame 0\n  hue                          0 -> 1\n  ");
    EXPECT_TRUE(contains(found.out, "  ... 1 more of colour.ccm, --all shows them\n"));
    EXPECT_TRUE(contains(found.out, "frame 1 (late): only in B\n"));
    EXPECT_TRUE(contains(run("diff --all a.json b.json").out, "colour.ccm[8]                nothing -> 1\n"));
    EXPECT_TRUE(contains(found.out, "\n62 differences in 2 of 3 parts\n")) << found.out;
    EXPECT_EQ(run("diff a.json a.json").out, "no difference in 2 parts\n");
    EXPECT_EQ(run("diff a.json --set gain=2 --set hue=0").out,
              "frame 0\n"
              "  exposure.unused              nothing -> 0\n"
              "  exposure.analog_gain         nothing -> 2\n"
              "  exposure.digital_gain        nothing -> 1\n3 differences in 1 of 2 parts\n");
    EXPECT_EQ(run("diff a.json a.json").code, 0);
    EXPECT_EQ(json::parse(run("diff --json a.json a.json").out), json::parse(R"({"equal": true, "differences": []})"));
}

TEST_F(program, compare_answers_with_its_exit_code)
{
    write("old.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 10], [1024, 40]]}]})");
    write("new.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 10], [1024, 46]]}]})");
    write("scene.json", R"({"frames": [{"nr_mode": 1, "exposure": {"analog_gain": 1}},
                                       {"name": "night", "exposure": {"analog_gain": 2.5}}]})");
    EXPECT_EQ(run("tuning pack old.json old.vuxb").code, 0);
    const result same = run("compare old.json old.vuxb --scene scene.json");
    EXPECT_EQ(same.code, 0) << same.err;
    EXPECT_EQ(same.out, "the same in 2 frames\n");
    EXPECT_EQ(run("compare old.json new.json --scene scene.json --frame 0").out,
              "the same in 1 frame, though the tunings differ\n");
    const result found = run("compare - new.json --scene scene.json < old.vuxb");
    EXPECT_EQ(found.code, 1) << found.err;
    EXPECT_EQ(found.out,
              "xnr.param: in 1 of 2 frames\n"
              "       first and largest     25 -> 28, frame 1 (night)\n"
              "       old and new           frame 1 (night)\n"
              "       from                  record xnr, id 335 version 100, set 0 of set index 0, offset 24\n"
              "       rows                  row 0 (gain 256) x 0.5000 + row 1 (gain 1024) x 0.5000 of 2, at gain 640\n"
              "makernote.xnr.value[0]: in 1 of 2 frames\n"
              "       first and largest     25 -> 28, frame 1 (night)\n"
              "1 value of the record and 1 of the makernote differ in 1 of 2 frames\n");
    EXPECT_EQ(run("compare old.json --change tuning:xnr.rows[1].param=46 --scene scene.json").out, found.out);
    EXPECT_EQ(run("compare --change hue=9 --over gain=1..2").code, 1);
    EXPECT_EQ(run("compare --change hue=9 --set hue=9").code, 0) << "of a frame that has hue 0";

    const json made = json::parse(run("compare old.json new.json --scene scene.json --over gain=1..4:0.25 --json").out);
    EXPECT_EQ(made.at("rows"), 13);
    EXPECT_EQ(made.at("different"), 11) << "the change rounds away at a gain of 1.25";
    const json &list = made.at("differences").at(0);
    EXPECT_EQ(list.at("list"), "xnr.param");
    EXPECT_EQ(list.at("values").at(0).at("largest"),
              json::parse(R"({"row": 12, "inputs": {"gain": 4.0}, "old": 40, "new": 46})"));
    EXPECT_EQ(list.at("origins").at(1).at("new").at("record").at("offset"), 24);
}

TEST_F(program, compare_gives_the_same_with_any_number_of_jobs)
{
    const std::string arguments =
        "compare --change sharpness=20 --change 'tuning:xnr[0/2].rows[0].param=7' --over gain=1..16:0.01 "
        "--over nr_mode=0..2 ";
    for (const char *format : {"", "--json", "--all"}) {
        const result one = run(arguments + format + " --jobs 1");
        EXPECT_EQ(one.code, 1) << one.err;
        EXPECT_EQ(run(arguments + format + " --jobs 3").out, one.out);
    }
}

TEST_F(program, sweep_writes_shards_that_are_the_whole)
{
    const std::string arguments =
        "sweep --frame preview --over gain=1..2:0.5 --over lsc.enable=0,1 --over nr_mode=0..2 ";
    const result whole = run(arguments);
    EXPECT_EQ(whole.code, 0);
    EXPECT_FALSE(contains(whole.err, "\r")) << "progress without a terminal";
    std::string parts;
    for (const char *shard : {"1/2", "2/2"})
        parts += run(arguments + "--shard " + shard).out;
    EXPECT_EQ(parts, whole.out);
    EXPECT_EQ(std::ranges::count(whole.out, '\n'), 1 + 3 * 2 * 3);
    EXPECT_EQ(run(arguments + "--no-header --output file").out, "");
    EXPECT_EQ(text_of("file"), whole.out.substr(whole.out.find('\n') + 1));

    const std::string many = "sweep --over sharpness=-128..127 --over hue=-20..20 --fields block13.* ";
    EXPECT_EQ(run(many + "--jobs 3").out, run(many + "--jobs 1").out);
    const result head = run(many + "2> errors; echo $? > code; } | head -n 1", "{");
    EXPECT_EQ(head.out, "sharpness,hue,block13.param[0],block13.param[1],block13.param[2]\n");
    EXPECT_EQ(text_of("code"), "141\n");
    EXPECT_FALSE(contains(text_of("errors"), "qz-isp:"));
}

TEST_F(program, sweep_tells_frames_and_where_values_came_from)
{
    write("t.json", R"({"records": [{"slot": "xnr", "family": 320, "set": 1, "rows": [[256, 10], [1024, 40]]}]})");
    write("s.json", R"({"frames": [{"name": "a \"b\",\né", "nr_mode": 1}, {"nr_mode": 0}]})");
    const std::string arguments = "sweep --tuning t.json --scene s.json --over gain=2 --fields xnr.record,xnr.weight,"
                                  "lens_shading.tables[0][0][0] ";
    EXPECT_EQ(run(arguments + "--frame all").out, "frame,name,gain,xnr.record,xnr.weight,lens_shading.tables[0][0][0]\n"
                                                  "0,\"a \"\"b\"\",\né\",2,xnr,0.3333333333333333,\n"
                                                  "1,,2,,,\n");
    const std::string all = R"({"frame":0,"name":"a \"b\",\né","gain":2,"xnr.record":"xnr",)"
                            R"("xnr.weight":0.3333333333333333,"lens_shading.tables[0][0][0]":null})"
                            "\n"
                            R"({"frame":1,"name":null,"gain":2,"xnr.record":null,)"
                            R"("xnr.weight":null,"lens_shading.tables[0][0][0]":null})"
                            "\n";
    EXPECT_EQ(run(arguments + "--frame all --format jsonl").out, all);
    EXPECT_EQ(run(arguments).out.substr(0, 15), "gain,xnr.record");
    EXPECT_EQ(run("get xnr,xnr.record,xnr.rows --tuning t.json --scene s.json --frame 0 --set gain=2").out,
              "xnr.param 20\nxnr.record xnr\nxnr.rows 0-1\n");
    EXPECT_EQ(run("get xnr.record --tuning t.json --scene s.json").out, "-\n");
    EXPECT_EQ(run("get makernote.frame_geometry.value2,makernote.version").out,
              "makernote.frame_geometry.value2 3264\nmakernote.version.text QZ_ISP 2.6.1 v2.0_012.000_002\n");
}

TEST_F(program, sweep_plots_beside_its_rows_or_in_their_place)
{
    if (qz::tool::built_in_page.before.empty())
        GTEST_SKIP() << "built without the page";
    const std::string arguments = "sweep --over sharpness=-128..127 --over hue=-6..6 --fields block13.* --jobs 2 ";
    const result alone = run(arguments + "--plot page.html");
    EXPECT_EQ(alone.code, 0) << alone.err;
    EXPECT_EQ(alone.out, "");
    EXPECT_EQ(run(arguments + "--plot other.html --format csv").out, run(arguments).out);
    EXPECT_EQ(text_of("other.html"), text_of("page.html"));
    EXPECT_TRUE(text_of("page.html").starts_with(qz::tool::built_in_page.before));
    EXPECT_EQ(run(arguments + "--plot - --output rows").out, text_of("page.html"));
    EXPECT_EQ(text_of("rows"), run(arguments).out);
}

TEST_F(program, leaves_files_as_they_were_when_it_fails)
{
    namespace fs = std::filesystem;
    write("tuning.json", R"({"records": []})");
    fs::create_symlink("tuning.json", path("link"));
    const result same = run("tuning pack tuning.json link");
    EXPECT_EQ(same.code, 1);
    EXPECT_EQ(same.err, "qz-isp: link: found a file that is read, tuning.json, expected another one to write\n");
    EXPECT_EQ(text_of("tuning.json"), R"({"records": []})");

    write("record", "before");
    fs::permissions(path("record"), fs::perms::owner_read | fs::perms::owner_write);
    const result cut = run("run --raw record", "ulimit -f 8;");
    EXPECT_EQ(cut.code, 1);
    EXPECT_EQ(cut.err, "qz-isp: record: cannot be written: File too large\n");
    EXPECT_EQ(text_of("record"), "before");
    EXPECT_EQ(run("run --raw record").err, "");
    EXPECT_EQ(text_of("record").size(), 9472u);
    EXPECT_EQ(fs::status(path("record")).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_EQ(std::distance(fs::directory_iterator(path("")), {}), 5) << "tuning.json, link, record, out and err";
}

TEST_F(program, shows_the_library_s_version_when_asked)
{
    EXPECT_EQ(run("run").err, "");
    EXPECT_TRUE(contains(run("run -v").err, "qz[1] QZ ISP 2.7 VERSION "));
    EXPECT_EQ(run("--version").out, "qz-isp 2.7.0\n");
    EXPECT_EQ(run("help tuning pack").out, run("tuning pack --help").out);
}

TEST_F(program, every_help_has_an_example)
{
    for (const char *arguments : {"--help", "run --help", "get --help", "report --help", "sample --help",
                                  "compare --help", "tuning --help", "tuning pack --help", "tuning show --help"}) {
        const result made = run(arguments);
        EXPECT_EQ(made.code, 0) << arguments;
        EXPECT_TRUE(contains(made.out, "Example:")) << arguments;
    }
}

} // namespace
