// Sweeps: which inputs and fields there are, and rows that depend on nothing but themselves.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "error.h"
#include "program.h"
#include "sweep_columns.h"
#include "sweep_ranges.h"

using namespace qz::tool;

namespace {

class sweep : public program_test {
  protected:
    std::string rows(const std::string &arguments) const
    {
        const result made = run("sweep " + arguments);
        EXPECT_EQ(made.code, 0) << made.err;
        EXPECT_FALSE(contains(made.err, "\r")) << "progress without a terminal";
        return made.out;
    }
};

std::vector<double> values_of(const std::string &option)
{
    frame_inputs inputs = {};
    const sweep_ranges ranges({option}, inputs);
    std::vector<double> values;
    for (uint64_t i = 0; i < ranges.rows(); ++i)
        values.push_back(ranges.ranges()[0].value(i));
    return values;
}

TEST(sweep_ranges, values_include_the_ends_that_steps_reach)
{
    const std::pair<const char *, std::vector<double>> cases[] = {
        {"sharpness=-128..127:100", {-128, -28, 72}},
        {"sharpness=126..127", {126, 127}},
        {"nr_mode=0..4294967294:4294967295", {0}},
        {"exposure.digital_gain=4..4:0.5", {4}},
        {"colour.saturation=0..0.3:0.1", {0, 0.1, 0.2, 0.3}}, // 3 x 0.1 lies above 0.3
        {"colour.ccm[3]=-1.5,2e1", {-1.5, 20}},
        {"effects=warm_grey,macc_1+vivid,0", {32, 257, 0}},
    };
    for (const auto &[option, expected] : cases)
        EXPECT_EQ(values_of(option), expected) << option;
}

TEST(sweep_ranges, the_last_range_runs_fastest_and_missing_records_are_made)
{
    frame_inputs inputs = {};
    const sweep_ranges ranges({"gain=1..2:0.5", "aux_size.height=480,600", "frame.size.width=0..65535"}, inputs);
    EXPECT_EQ(ranges.rows(), 3u * 2 * 65536);
    ranges.apply((1 * 2 + 1) * 65536 + 1920);
    EXPECT_EQ(inputs.exposure->analog_gain, 1.5f);
    EXPECT_EQ(inputs.exposure->digital_gain, 1.0f);
    EXPECT_EQ(inputs.aux_size->height, 600);
    EXPECT_EQ(inputs.frame->size.width, 1920);
    EXPECT_EQ(inputs.frame->vertical_denominator, 1);
    EXPECT_FALSE(inputs.colour || inputs.scene);
}

template <typename Action>
std::string error_of(Action action)
{
    try {
        action();
    } catch (const usage_error &error) {
        return error.what();
    }
    return "no error";
}

TEST(sweep_ranges, say_what_is_wrong_with_them)
{
    const std::pair<std::vector<std::string>, const char *> cases[] = {
        {{"gain"}, "--over gain: found no \"=\", expected NAME=FIRST..LAST:STEP or NAME=VALUE,VALUE"},
        {{"gian=1"}, "found the name \"gian\", expected one of gain, effects, "},
        {{"gian=1"}, ", colour.ccm[0] to colour.ccm[8], "},
        {{"colour.ccm=1"}, "found the name \"colour.ccm\""},
        {{"colour.ccm[9]=1"}, "found the name \"colour.ccm[9]\""},
        {{"exposure.unused=1"}, "found the name \"exposure.unused\""},
        {{"lsc.enable=0"}, "found a frame without lsc, expected one with lens shading grids"},
        {{"sharpness=-129..0"}, "found \"-129\", expected an integer from -128 to 127"},
        {{"sharpness=0.5"}, "found \"0.5\", expected an integer"},
        {{"sharpness=0..4:0.5"}, "found \"0.5\", expected a whole step above 0"},
        {{"gain=1,2;3"}, "found \"2;3\", expected a number within single precision"},
        {{"gain=1..nan"}, "found \"nan\""},
        {{"gain=1e39"}, "found \"1e39\""},
        {{"gain=1..2:0"}, "found \"0\", expected a step above 0"},
        {{"gain=1..2:-1"}, "found \"-1\", expected a step above 0"},
        {{"gain=2..1"}, "found 2 before 1, expected the lower end first"},
        {{"gain=0..1:1e-12"}, "values, expected at most 4294967296"},
        {{"nr_mode=1,2,1"}, "found 1 twice, expected every value once"},
        {{"effects=warm_grey+"}, "found \"warm_grey+\", expected a flag word, or names joined with + of macc_1, "},
        {{"gain=1", "exposure.digital_gain=2"}, "found the input that gain sets already"},
        {{"exposure.digital_gain=2", "gain=1"}, "found the input that exposure.digital_gain sets already"},
        {{"nr_mode=0..4294967295", "effects=0..4294967295"}, "found more than 2^64 rows"},
    };
    for (const auto &[options, expected] : cases) {
        frame_inputs inputs = {};
        const std::string error = error_of([&, &given = options] { sweep_ranges(given, inputs); });
        EXPECT_TRUE(contains(error, expected)) << error << "\nlacks: " << expected;
    }
}

TEST(sweep_columns, are_named_as_they_were_asked_for)
{
    std::string names;
    for (const sweep_column &column : choose_columns("block13.param1,ctc.shift,block7.field_0_to_33,checksum,block2.*"))
        names += column.name + (column.described != nullptr ? "@" + std::to_string(column.index) : "") + " ";
    EXPECT_EQ(names, "block13.param1@1 ctc.shift@0 block7.field_0_to_33@3 checksum block2.param[0]@0 block2.param[1]@1 "
                     "block2.gain[0]@0 block2.gain[1]@1 block2.gain[2]@2 block2.gain[3]@3 ");
    const std::pair<const char *, const char *> wrong[] = {
        {"checksum,",
         "\"\": found the block \"\", expected bytes_used, checksum, or a field of one of block1 (white_bal"},
        {"block30.param", "found the block \"block30\""},
        {"block13.param3",
         "found the field \"param3\", expected * or one of param[0] to param[2] in block edge_enhanc"},
        {"xnr.param0", "found the field \"param0\", expected * or one of param in block xnr"},
        {"block13.param0,edge_enhancement.*", "found block13.param0 and edge_enhancement.param[0], the same value"},
    };
    for (const auto &[items, expected] : wrong) {
        const std::string error = error_of([given = items] { choose_columns(given); });
        EXPECT_TRUE(contains(error, expected)) << error << "\nlacks: " << expected;
    }
}

// The sum of a dump's little-endian words, which the column "checksum" states.
uint32_t word_sum(const std::string &bytes)
{
    uint32_t sum = 0;
    for (size_t i = 0; i < bytes.size(); ++i)
        sum += static_cast<uint32_t>(static_cast<uint8_t>(bytes[i])) << 8 * (i % 4);
    return sum;
}

// The tuning record without rows leaves what the block held, so that a row would show the one before it.
TEST_F(sweep, rows_are_what_a_context_of_their_own_gives)
{
    write("t.json", R"({"records": [{"slot": "temporal_noise_reduction", "family": 320, "set": 0, "rows": []},
                                    {"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 10], [1024, 40]]}]})");
    std::string expected = "nr_mode,gain,block5.param[0],xnr.param,bytes_used,checksum\n";
    for (const auto &[mode, gain, words] :
         {std::tuple("0", "1", ",65535,0,"), {"0", "2.5", ",65535,0,"}, {"1", "1", ",0,10,"}, {"1", "2.5", ",0,25,"}}) {
        write("s.json",
              std::string(R"({"frames": [{"nr_mode": )") + mode + R"(, "exposure": {"analog_gain": )" + gain + "}}]}");
        const std::string dump = run("run --tuning t.json --scene s.json --raw -").out;
        expected += std::string(mode) + "," + gain + words + "4928," + std::to_string(word_sum(dump)) + "\n";
    }
    EXPECT_EQ(rows("--tuning t.json --scene s.json --over nr_mode=0,1 --over gain=1..2.5:1.5 --fields "
                   "block5.param[0],xnr.param,bytes_used,checksum"),
              expected);
}

TEST_F(sweep, shards_in_order_are_the_whole)
{
    const std::string arguments = "--frame preview --over gain=1..2:0.5 --over lsc.enable=0,1 --over nr_mode=0..2 ";
    const std::string whole = rows(arguments);
    std::string parts;
    for (const char *shard : {"1/4", "2/4", "3/4", "4/4"})
        parts += rows(arguments + "--shard " + shard);
    EXPECT_EQ(parts, whole);
    EXPECT_EQ(std::count(whole.begin(), whole.end(), '\n'), 1 + 3 * 2 * 3);
    EXPECT_EQ(rows(arguments + "--no-header --output file"), "");
    EXPECT_EQ(text_of("file"), whole.substr(whole.find('\n') + 1));
}

TEST_F(sweep, json_lines_show_what_a_record_lacks_as_null)
{
    EXPECT_EQ(
        rows("--format jsonl --over lsc.enable=0,1 --over gamma_257=0,1 --fields block28.columns,gamma_0.table256"),
        "{\"lsc.enable\":0,\"gamma_257\":0,\"block28.columns\":null,\"gamma_0.table256\":null}\n"
        "{\"lsc.enable\":0,\"gamma_257\":1,\"block28.columns\":null,\"gamma_0.table256\":4095}\n"
        "{\"lsc.enable\":1,\"gamma_257\":0,\"block28.columns\":27,\"gamma_0.table256\":null}\n"
        "{\"lsc.enable\":1,\"gamma_257\":1,\"block28.columns\":27,\"gamma_0.table256\":4095}\n");
}

TEST_F(sweep, ends_with_a_code_for_what_happened)
{
    const std::string values = "sweep --over sharpness=-128..127 --over hue=-20..20 --fields block13.* ";
    const std::tuple<std::string, int, const char *> cases[] = {
        {"sweep", 2, "--over is required"},
        {values + "--format json", 2, "--format: json not in {csv,jsonl}"},
        {values + "--format jsonl --no-header", 2, "--no-header: found JSON lines, expected CSV"},
        {values + "--shard 0/2", 2, "--shard: found \"0/2\", expected I/N"},
        {values + "--shard 3/2", 2, "--shard: found \"3/2\""},
        {values + "--frame all", 2, "--frame: found 4 frames, expected one for a sweep"},
        {values + "--output /dev/full", 1, "qz-isp: /dev/full: cannot be written: No space left"},
    };
    for (const auto &[arguments, code, error] : cases) {
        const result made = run(arguments);
        EXPECT_EQ(made.code, code) << arguments;
        EXPECT_TRUE(contains(made.err, error)) << arguments << "\n" << made.err;
    }
    const result head = run(values + "2> errors; echo $? > code; } | head -n 1", "{");
    EXPECT_EQ(head.out, "sharpness,hue,block13.param[0],block13.param[1],block13.param[2]\n");
    EXPECT_EQ(text_of("code"), "141\n");
    EXPECT_FALSE(contains(text_of("errors"), "qz-isp:"));
}

} // namespace
