// Sweeps: which inputs and fields there are, and rows that depend on nothing but themselves.
#include <cstring>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desk/sweep/plan.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

std::vector<double> values_of(const std::string &option)
{
    frame_inputs inputs = {};
    byte_buffer container;
    const sweep_ranges ranges({option}, inputs, container);
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
        {"nr_mode=4294967295,16777217", {4294967295, 16777217}},
        {"sharpness=5..-6:5", {5, 0, -5}},
        {"gain=1..17*2", {1, 2, 4, 8, 16}},
        {"gain=16..0.9*4", {16, 4, 1}},
        {"gain=1..1.331*1.1", {1, 1.1, 1.1 * 1.1, 1.331}}, // the last is 1.3310000000000004
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
    byte_buffer container;
    const sweep_ranges ranges({"gain=1..2:0.5", "aux_size.height=480,600", "frame.size.width=0..65535"}, inputs,
                              container);
    EXPECT_EQ(ranges.rows(), 3u * 2 * 65536);
    ranges.apply((1 * 2 + 1) * 65536 + 1920);
    EXPECT_EQ(inputs.exposure->analog_gain, 1.5f);
    EXPECT_EQ(inputs.exposure->digital_gain, 1.0f);
    EXPECT_EQ(inputs.aux_size->height, 600);
    EXPECT_EQ(inputs.frame->size.width, 1920);
    EXPECT_EQ(inputs.frame->vertical_denominator, 1);
    EXPECT_FALSE(inputs.colour || inputs.scene);
}

TEST(sweep_ranges, say_what_is_wrong_with_them)
{
    const std::pair<std::vector<std::string>, const char *> cases[] = {
        {{"gain"},
         "over gain: found no \"=\", expected NAME=FIRST..LAST:STEP, NAME=FIRST..LAST*FACTOR or NAME=VALUE,VALUE"},
        {{"gian=1"}, "found the name \"gian\", expected one of gain, effects, "},
        {{"gian=1"}, ", colour.ccm[0] to colour.ccm[8], "},
        {{"gian=1"}, "; did you mean gain?"},
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
        {{"gain=1..2*1"}, "found \"1\", expected a factor above 1"},
        {{"nr_mode=1..2*1.5"}, "found \"1.5\", expected a whole factor above 1"},
        {{"gain=0..2*2"}, "found 0 and 2, expected ends above 0 for a factor"},
        {{"gain=0..1:1e-12"}, "values, expected at most 4294967296"},
        {{"nr_mode=1,2,1"}, "found 1 twice, expected every value once"},
        {{"effects=warm_grey+"}, "found \"warm_grey+\", expected a flag word, or names joined with + of macc_1, "},
        {{"gain=1", "exposure.digital_gain=2"}, "found the input that gain sets already"},
        {{"exposure.digital_gain=2", "gain=1"}, "found the input that exposure.digital_gain sets already"},
        {{"nr_mode=0..4294967295", "effects=0..4294967295"}, "found more than 2^64 rows"},
    };
    for (const auto &[options, expected] : cases) {
        byte_buffer container;
        frame_inputs inputs = {};
        const std::string error = error_of([&, &given = options] { sweep_ranges(given, inputs, container); });
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

TEST(sweep_shards, are_the_whole_in_parts_that_differ_by_a_row)
{
    for (const uint64_t rows : std::initializer_list<uint64_t>{0, 1, 7, 8, 9, uint64_t{1} << 36}) {
        uint64_t end = 0;
        for (int i = 1; i <= 8; ++i) {
            const auto [first, last, leads] = shard_rows(std::to_string(i) + "/8", rows);
            EXPECT_EQ(first, end);
            EXPECT_TRUE(last - first == rows / 8 || (rows % 8 != 0 && last - first == rows / 8 + 1)) << rows;
            EXPECT_EQ(leads, i == 1);
            end = last;
        }
        EXPECT_EQ(end, rows);
        EXPECT_TRUE(shard_rows(std::nullopt, rows).leads);
        EXPECT_EQ(shard_rows(std::nullopt, rows).last, rows);
    }
    for (const std::string wrong : {"0/2", "3/2", "1", "/", "1/", "1/2x", "", "x/2", "-1/2"})
        EXPECT_EQ(error_of([&] { shard_rows(wrong, 5); }),
                  "shard: found \"" + wrong + "\", expected I/N, shard I of N with I from 1 to N");
}

// The tuning record without rows leaves what the block held, so that a row would show the one before it.
TEST(sweep_plan, rows_are_what_a_context_of_their_own_gives)
{
    byte_buffer container =
        pack_container("t", R"({"records": [{"slot": "temporal_noise_reduction", "family": 320, "set": 0, "rows": []},
                             {"slot": "xnr", "family": 320, "set": 0, "rows": [[256, 10], [1024, 40]]}]})");
    scene setup = read_scene("s", R"({"frames": [{"nr_mode": 2}, {"lsc": {"width": 1, "height": 1, "enable": 1,
                                                                     "grid": [null, null, null, null]}}]})");
    const sweep_plan plan({{"nr_mode=0,1", "gain=1..2.5:1.5", "lsc.enable=0"},
                           "block5.param[0],xnr.param,bytes_used,checksum,block28.columns,gamma_0.table256",
                           {},
                           {"edge_mode=1", "lsc.enable=1"},
                           "2/2"},
                          setup, container);
    isp_session session(container, "t", setup);
    EXPECT_EQ(plan.rows().first, 2u);
    EXPECT_EQ(plan.rows().last, 4u);
    const int64_t expected[][2] = {{65535, 0}, {65535, 0}, {0, 10}, {0, 25}};
    for (const uint64_t row : {0u, 2u, 3u, 1u}) {
        const record_snapshot snapshot = plan.compute(row, session);
        EXPECT_EQ(setup.frames[1].controls.nr_mode, row / 2);
        EXPECT_TRUE(setup.frames[1].controls.edge_mode == 1 && setup.frames[1].lsc->enable == 0);
        const record_snapshot alone = isp_session(container, "t", setup).run(setup.frames[1]);
        EXPECT_EQ(std::memcmp(&snapshot.record, &alone.record, sizeof alone.record), 0) << row;
        uint32_t sum = 0;
        for (size_t i = 0; i < snapshot.bytes_used; ++i)
            sum += static_cast<uint32_t>(reinterpret_cast<const uint8_t *>(&snapshot.record)[i]) << 8 * (i % 4);
        const std::optional<int64_t> values[] = {expected[row][0], expected[row][1], AIC_FIXED_SIZE, sum,
                                                 std::nullopt,     std::nullopt};
        for (size_t i = 0; i < std::size(values); ++i)
            EXPECT_EQ(column_value(plan.columns()[i], snapshot), values[i]) << row << " " << i;
    }
    EXPECT_EQ(error_of([&] {
                  sweep_plan({{"gain=1"}, {}, "all", {}, {}}, setup, container);
              }),
              "frame: found 2 frames, expected one for a sweep");
}

} // namespace
