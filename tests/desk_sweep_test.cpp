// Sweeps: which inputs and fields there are, and rows that depend on nothing but themselves.
#include <algorithm>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "desk/explain/block_sources.h"
#include "desk/sweep/column_values.h"
#include "desk/sweep/plan.h"
#include "desk/sweep/plot.h"
#include "qz_log.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

// The library logs its version for every context.
void qz_log(int /*level*/, const char * /*format*/, ...) {}

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
        names += column.name + (column.described != nullptr ? "@" + std::to_string(column.indices[0]) : "") + " ";
    EXPECT_EQ(names, "block13.param1@1 ctc.shift@0 block7.field_0_to_33@3 checksum block2.param[0]@0 block2.param[1]@1 "
                     "block2.gain[0]@0 block2.gain[1]@1 block2.gain[2]@2 block2.gain[3]@3 ");
    const std::pair<const char *, const char *> wrong[] = {
        {"checksum,",
         "\"\": found the block \"\", expected bytes_used, checksum, makernote.RECORD, or a field of one of "
         "block1 (white_bal"},
        {"block30.param", "found the block \"block30\""},
        {"block13.param3",
         "found the field \"param3\", expected * or one of param[0] to param[2], record, set, index, rows, weight in "
         "block edge_enhanc"},
        {"block13.param[2..3]", "found the field \"param[2..3]\""},
        {"block13.param[2..1]", "found the field \"param[2..1]\""},
        {"block13.param0..1", "found the field \"param0..1\""},
        {"xnr.param0", "found the field \"param0\", expected * or one of param, record, set, index, rows, weight in "},
        {"block13.recrd", "; did you mean record?"},
        {"block13.param0,edge_enhancement.*", "found block13.param0 and edge_enhancement.param[0], the same value"},
        {"block28.rows,lens_shading.rows", "found block28.rows and lens_shading.rows, the same value"},
        {"block28.tables[0][0]", "found tables[0][0], expected tables[0 to 3][ROW][COLUMN], an index or FIRST..LAST"},
        {"block28.tables[4][0][0]", "found tables[4][0][0]"},
        {"block28.tables[0][0][3789]", "found tables[0][0][3789]"},
        {"block28.tables[0][0][0]x", "found tables[0][0][0]x"},
        {"block28.tables", "found tables, expected"},
        {"block28.tables[0][0..9][0..378]", "found 10 rows of 379, expected at most 3789 entries of a channel"},
        {"xnr.tables[0][0][0]", "found the field \"tables[0][0][0]\""},
        {"makernote.acm", "found the makernote record \"acm\", expected one of version, white_balance, "},
        {"makernote.ctc.value11",
         "found \"value11\", expected * or value[0] to value[10], an index or FIRST..LAST, in"},
        {"makernote.gamma_table",
         "found \"*\", expected value[0] to value[256], an index or FIRST..LAST, in makernote"},
        {"makernote.version.value0", "found \"value0\", expected text in makernote record version"},
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

// What columns are called is what they can be chosen by.
TEST(sweep_columns, are_listed_with_everything_that_a_frame_has)
{
    size_t count = 0;
    for (const std::string &name : column_names()) {
        const std::vector<sweep_column> columns = choose_columns(name);
        ASSERT_FALSE(columns.empty()) << name;
        count += columns.size();
        const std::vector<sweep_column> again = choose_columns(columns.back().name);
        EXPECT_EQ(again.size(), columns.back().name == name ? columns.size() : 1) << name;
        EXPECT_EQ(again.back().value_name, columns.back().value_name);
    }
    EXPECT_GT(count, choose_columns({}).size());
    // A field that is called as an origin is what the name means: then the block may not have a record.
    for (const block_layout &block : record_blocks()) {
        for (const field &described : block.fields) {
            const std::span origins = origin_columns();
            EXPECT_TRUE(std::ranges::find(origins, described.name, &named_column::name) == origins.end() ||
                        block_sources()[block_number(block)].slot == tuning_slot::none)
                << block.name << '.' << described.name;
        }
    }
}

std::string text_of(const cell &value)
{
    if (const auto *const words = std::get_if<std::string_view>(&value))
        return std::string(*words);
    if (const auto *const number = std::get_if<int64_t>(&value))
        return std::to_string(*number);
    const auto *const real = std::get_if<double>(&value);
    return real != nullptr ? fmt::format("{}.", *real) : "-";
}

std::string row_of(sweep_plan &plan, uint64_t row)
{
    const column_source &values = plan.compute(row);
    std::string text;
    for (const sweep_column &column : plan.columns())
        text += text_of(column_value(column, values)) + " ";
    return text;
}

byte_buffer two_sets()
{
    return pack_container("t",
                          R"({"records": [{"slot": "temporal_noise_reduction", "family": 320, "set": 0, "rows": []},
                             {"slot": "macc", "family": 320, "set": 0, "entries": []},
                             {"slot": "xnr", "family": 320, "set": 1, "rows": [[256, 10], [1024, 40]]}]})");
}

// The tuning record without rows leaves what the block held, so that a row would show the one before it.
TEST(sweep_plan, rows_are_what_a_context_of_their_own_gives)
{
    const scene setup = read_scene("s", R"({"frames": [{"nr_mode": 2},
        {"lsc": {"width": 1, "height": 1, "enable": 1, "grid": [null, null, null, null]}}]})");
    sweep_plan plan(
        {{"nr_mode=0,1", "gain=1..2.5:1.5", "lsc.enable=0"},
         "block5.param[0],xnr.param,bytes_used,block28.columns,gamma_0.table256,xnr.record,xnr.set,"
         "xnr.index,xnr.rows,xnr.weight,block5.record,macc.rows,macc.set,makernote.manual_controls.value[7]",
         {},
         {"edge_mode=1", "lsc.enable=1"},
         "2/2"},
        setup, two_sets(), "t");
    EXPECT_EQ(plan.rows().first, 2u);
    EXPECT_EQ(plan.rows().last, 4u);
    const char *const expected[] = {"65535 0 4928 - - - - - - - - - 0 1 ", "65535 0 4928 - - - - - - - - - 0 1 ",
                                    "0 10 4928 - - xnr 1 0 0 0. - - 0 1 ", "0 25 4928 - - xnr 1 0 0-1 0.5. - - 0 1 "};
    for (const uint64_t row : {0u, 2u, 3u, 1u, 3u})
        EXPECT_EQ(row_of(plan, row), expected[row]) << row;
}

// For every block: what its columns need alone is what they are where all of the frame is computed.
TEST(sweep_plan, computes_what_its_columns_need)
{
    const scene setup = read_scene("sample", qz::tool::sample_scene);
    const byte_buffer container = pack_container("sample", qz::tool::sample_tuning);
    const std::vector<std::string> over[] = {
        {"gain=1,7.3,300", "nr_mode=0..2", "nr_strength=-128,20", "edge_mode=0,1", "sharpness=-128,33"},
        {"brightness=-128,0,90", "contrast=0,127", "effects=0,negative,two_level+macc_2,vivid", "gamma_257=0,1",
         "colour.gamma_parameter=0,0.5"},
        {"lsc.enable=0,1", "frame.size.width=0,1280,4000", "frame.horizontal_numerator=1,2", "aux_size.height=0,3000",
         "tuning_mode=0..2"},
        {"hue=-128,50", "saturation=-128,127", "colour.saturation=0.5,2", "scene.macc_target=0,5000",
         "scene.saturation_decrement=0,1", "colour.ccm[0]=0,1.9", "colour.white_balance_gain[1]=0.5,9",
         "colour.black_level[0]=0,4000", "block9_control=0,1"},
        {"tuning:edge_enhancement[0/0].rows[0].param1=0,7", "tuning:ctc_config[0/0].base_shift=1,3",
         "tuning:macc[0/0].entries[0].key=0,9", "gain=1,5"},
    };
    for (const std::vector<std::string> &ranges : over) {
        for (const char *const frame : {"preview", "video"}) {
            for (const block_layout &block : record_blocks()) {
                const std::string name(block.name);
                const std::string columns = name + ".*";
                sweep_plan alone({ranges, columns, frame, {}, {}}, setup, container, "sample");
                sweep_plan whole({ranges, columns + ",checksum", frame, {}, {}}, setup, container, "sample");
                for (uint64_t row = 0; row < alone.rows().last; row += 11) {
                    const std::string values = row_of(alone, row);
                    ASSERT_EQ(row_of(whole, row).substr(0, values.size()), values) << columns << ' ' << row;
                }
            }
        }
    }
}

TEST(sweep_plan, goes_through_the_frames_of_a_scene)
{
    const scene setup = read_scene("s", R"({"frames": [{"nr_mode": 1}, {"name": "b", "nr_mode": 0}]})");
    const auto columns = [](const char *frame) {
        return sweep_choice{
            {"gain=1,2.5"}, "xnr.param,frame_counter.value,block9.value", frame, {"block9_control=3"}, {}};
    };
    sweep_plan all(columns("all"), setup, two_sets(), "t");
    EXPECT_TRUE(all.tells_frames());
    ASSERT_EQ(all.rows().last, 4u);
    for (const char *const frame : {"1", "0"}) {
        sweep_plan one(columns(frame), setup, two_sets(), "t");
        EXPECT_FALSE(one.tells_frames());
        for (uint64_t row = 0; row < 2; ++row) {
            const uint64_t of_all = row + (*frame == '1' ? 2 : 0);
            EXPECT_EQ(std::to_string(all.frame_of(of_all)), frame);
            EXPECT_EQ(row_of(one, row), row_of(all, of_all)) << frame << row;
        }
    }
    EXPECT_EQ(row_of(all, 1), "25 0 2 ");
    EXPECT_EQ(all.frame_name(1), "b");
    const std::string wide = error_of([&] {
        sweep_plan({{"nr_mode=0..4294967294", "effects=0..4294967295"}, {}, "all", {}, {}}, setup, two_sets(), "t");
    });
    EXPECT_TRUE(contains(wide, "frame: found more than 2^64 rows of 2 frames")) << wide;
}

// A text that is the one before is 0.
TEST(plotted_rows, hold_ranges_and_values)
{
    const scene setup = read_scene("s", R"({"frames": [{"nr_mode": 1}, {"name": "b", "nr_mode": 0}]})");
    sweep_plan plan(
        {{"effects=0,vivid+macc_1", "gain=1..1.21*1.1"}, "xnr.param,block18.rows,bytes_used", "all", {}, {}}, setup,
        two_sets(), "t");
    plotted_rows whole(3);
    for (const auto &[first, last] : {std::pair(0, 5), std::pair(5, 12)}) {
        plotted_rows part(3);
        for (int row = first; row < last; ++row)
            part.add(plan.columns(), plan.compute(static_cast<uint64_t>(row)));
        whole.append(std::move(part));
    }
    EXPECT_EQ(whole.data(plan), json::parse(R"({
        "ranges": [
            {"name": "frame", "values": [0, 1], "multiplies": false, "labels": ["frame 0", "b"]},
            {"name": "effects", "values": [0, 257], "multiplies": false, "labels": ["none", "macc_1+vivid"]},
            {"name": "gain", "values": [1, 1.1, 1.21], "multiplies": true}],
        "columns": [
            {"name": "xnr.param", "block": "xnr", "limits": [0, 65535],
             "values": [10, 11, 12, 10, 11, 12, 0, 0, 0, 0, 0, 0]},
            {"name": "block18.rows", "block": "xnr", "origin": "rows",
             "values": ["0", "0-1", 0, "0", "0-1", 0, null, null, null, null, null, null]},
            {"name": "bytes_used",
             "values": [4928, 4928, 4928, 4928, 4928, 4928, 4928, 4928, 4928, 4928, 4928, 4928]}]})"));
}

TEST(plotted_rows, are_all_of_a_sweep_that_fits_a_page)
{
    const scene setup = read_scene("s", R"({"frames": [{}]})");
    const auto error = [&](const char *range, std::optional<std::string> shard) {
        return error_of([&] {
            const sweep_plan plan({{range}, "block13.*", {}, {}, std::move(shard)}, setup, two_sets(), "t");
            expect_plottable(plan);
        });
    };
    EXPECT_EQ(error("nr_mode=1..166666", {}), "no error");
    EXPECT_EQ(error("nr_mode=1..166667", {}),
              "plot: found 166667 rows of 3 values, expected at most 500000 values in a "
              "page: choose fewer --fields or larger steps");
    EXPECT_EQ(error("nr_mode=0,1", "1/2"), "shard: found a part of the rows, expected all of them for a plot");
    EXPECT_EQ(error("nr_mode=0,1", "1/1"), "no error");
}

} // namespace
