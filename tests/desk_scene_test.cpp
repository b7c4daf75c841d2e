// Scene files: defaults, inheritance of frames, and errors.
#include <string>

#include <gtest/gtest.h>

#include "desk/diff/differences.h"
#include "desk/scene/frame_choice.h"
#include "desk/scene/to_json.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

std::string read_error(const std::string &text)
{
    return error_of([&] { read_scene("s.json", text); });
}

TEST(scene, a_frame_without_inputs_has_none)
{
    const scene read = read_scene("s.json", R"({"frames": [{}]})");
    ASSERT_EQ(read.frames.size(), 1u);
    const frame_inputs &frame = read.frames[0];
    EXPECT_FALSE(frame.frame || frame.exposure || frame.scene || frame.gamma || frame.colour || frame.lsc ||
                 frame.aux_size || frame.selection_list);
    EXPECT_EQ(frame.controls.nr_mode, 0u);
    EXPECT_FALSE(read.cmc);
}

TEST(scene, a_sub_record_that_is_given_corrects_nothing_by_itself)
{
    const scene read =
        read_scene("s.json", R"({"frames": [{"frame": {"size": {"width": 640}}, "exposure": {"digital_gain": 2.5},
                                "colour": {"saturation": 1.5}, "selection_list": [7]}]})");
    const frame_inputs &frame = read.frames[0];
    EXPECT_EQ(frame.frame->size.width, 640);
    EXPECT_EQ(frame.frame->size.height, 0);
    EXPECT_EQ(frame.frame->vertical_denominator, 1);
    EXPECT_EQ(frame.exposure->analog_gain, 1.0f);
    EXPECT_EQ(frame.exposure->digital_gain, 2.5f);
    EXPECT_EQ(frame.colour->ccm[4], 1.0f);
    EXPECT_EQ(frame.colour->ccm[5], 0.0f);
    EXPECT_EQ(frame.colour->white_balance_gain[3], 1.0f);
    EXPECT_EQ(frame.colour->saturation, 1.5f);
    EXPECT_EQ(*frame.selection_list, (std::vector<uint32_t>{7, 0}));
}

TEST(scene, frames_inherit_what_they_do_not_change)
{
    const scene read = read_scene("s.json", R"({"frames": [
        {"name": "a", "sharpness": 5, "hue": -3, "effects": ["negative", "macc_1"],
         "exposure": {"analog_gain": 2, "digital_gain": 3}},
        {"exposure": {"analog_gain": 4}, "effects": 1024},
        {"exposure": null},
        {"inherit": false, "hue": 1},
        {"hue": null, "exposure": {"analog_gain": 7, "digital_gain": null}},
        {"exposure": {"analog_gain": null}}]})");
    ASSERT_EQ(read.frames.size(), 6u);
    EXPECT_EQ(read.frames[0].controls.effects, 0x81u);
    EXPECT_EQ(read.frames[1].name, "");
    EXPECT_EQ(read.frames[1].controls.sharpness, 5);
    EXPECT_EQ(read.frames[1].controls.effects, 0x400u);
    EXPECT_EQ(read.frames[1].exposure->analog_gain, 4.0f);
    EXPECT_EQ(read.frames[1].exposure->digital_gain, 3.0f);
    EXPECT_FALSE(read.frames[2].exposure);
    EXPECT_EQ(read.frames[2].controls.hue, -3);
    EXPECT_EQ(read.frames[3].controls.sharpness, 0);
    EXPECT_EQ(read.frames[3].controls.hue, 1);
    EXPECT_EQ(read.frames[4].controls.hue, 0);
    EXPECT_EQ(read.frames[4].exposure->analog_gain, 7.0f);
    EXPECT_EQ(read.frames[5].exposure->analog_gain, 1.0f);
}

TEST(scene, grids_and_curves_keep_their_order)
{
    const scene read = read_scene("s.json", R"({"frames": [{
        "gamma": {"curve": [null, [0, 0.25, 1], null]},
        "lsc": {"enable": 1, "width": 2, "height": 3, "grid": [[[1, 2], [3, 4], [5, 6]], null, null, null]}}]})");
    const frame_inputs &frame = read.frames[0];
    EXPECT_EQ(frame.gamma->point_count, 3u);
    EXPECT_FALSE(frame.gamma->curves[0]);
    EXPECT_EQ(*frame.gamma->curves[1], (std::vector<float>{0.0f, 0.25f, 1.0f}));
    EXPECT_EQ(*frame.lsc->grids[0], (std::vector<float>{1, 2, 3, 4, 5, 6}));
    EXPECT_FALSE(frame.lsc->grids[1]);
}

TEST(scene, errors_name_the_field_what_was_found_and_what_was_expected)
{
    const std::pair<const char *, const char *> cases[] = {
        {"[]", "s.json: found a list of 0, expected an object"},
        {"{}", "s.json: found no \"frames\", expected it given"},
        {R"({"frames": []})", "s.json: frames: found a list of 0, expected at least one frame"},
        {"{\"frames\": [\n {\"hue\": }]}", "s.json: line 2, column 10: syntax error while parsing value - unexpected "
                                           "'}'; expected '[', '{', or a literal"},
        {R"({"frames": [{"hue": 1, "hue": 2}]})",
         "s.json: frames[0]: found the name \"hue\" twice in one object, expected it once"},
        {R"({"frames": [{}, {"colour": {"ccm": [1, {"x": 1, "x": 1}]}}]})",
         "s.json: frames[1].colour.ccm[1]: found the name \"x\" twice"},
        {R"({"grid": {"width": 4294967295, "height": 4294967295}, "frames": [{}]})",
         "s.json: grid: found 4294967295 x 4294967295 cells, expected at most 4294967295"},
        {R"([0, {"a":1,"b":1,"c":1,"d":1,"e":1,"f":1,"g":1,"h":1,"i":1,"j":1,"k":1,"l":1,"m":1,"n":1,"o":1,"p":1,"c":1}])",
         "s.json: [1]: found the name \"c\" twice in one object"},
        {R"({"frames": [1e400]})", "s.json: line 1, column 17: found 1e400, expected a number within double precision"},
        {R"({"frames": [{"hue": 1e2}, {"hue": 1.5}]})", "s.json: frames[1].hue: found 1.5, expected an integer"},
        {R"({"frames": [{"hue": 128}]})", "s.json: frames[0].hue: found 128, expected an integer from -128 to 127"},
        {R"({"frames": [{}, {"nr_mode": "on"}]})",
         "s.json: frames[1].nr_mode: found \"on\", expected an integer from 0 to 4294967295"},
        {R"({"frames": [{"exposure": {"gain": 2}}]})",
         "s.json: frames[0].exposure: found the name \"gain\", expected one of unused, analog_gain, digital_gain"},
        {R"({"frames": [{"colour": {"ccm": [1, 2]}}]})",
         "s.json: frames[0].colour.ccm: found a list of 2, expected a list of 9"},
        {R"({"frames": [{"exposure": {"analog_gain": 1e39}}]})",
         "s.json: frames[0].exposure.analog_gain: found 1e+39, expected a number from "},
        {R"({"frames": [{"gamma": {"curve": [[0, 1], [0], null]}}]})",
         "s.json: frames[0].gamma.curve[1]: found 1 points, expected 2 as in the curve before"},
        {R"({"frames": [{"lsc": {"enable": 1, "width": 2, "height": 1, "grid": [[[1]], null, null, null]}}]})",
         "s.json: frames[0].lsc.grid[0][0]: found a list of 1, expected a list of 2"},
        {R"({"cmc": {"sensor_description": {"depth": 10}}, "frames": [{}]})",
         "s.json: cmc.sensor_description: found the name \"depth\", expected one of "},
        {R"({"frames": [{"effects": ["sepia"]}]})",
         "s.json: frames[0].effects[0]: found \"sepia\", expected one of macc_1"},
    };
    EXPECT_EQ(read_error(std::string("{\"frames\": [{}]}\n\0 more", 24)),
              "s.json: line 2, column 1: found a byte 0, expected text");
    const auto nested = [](const char *value) { return std::string(257, '[') + value + std::string(257, ']'); };
    EXPECT_EQ(read_error(nested("")), "s.json: found a list of 1, expected an object");
    EXPECT_EQ(read_error(nested("1")), "s.json: [0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0][0]...: "
                                       "found values nested more than 256 deep, expected fewer levels");
    std::string deep = R"({"frames":[{}, )";
    for (int i = 0; i < 100000; ++i)
        deep += "{\"a\":";
    EXPECT_TRUE(contains(read_error(deep), "s.json: frames[1].a.a.a."));
    EXPECT_TRUE(contains(read_error(deep), "...: found values nested more than 256 deep, expected fewer levels"));
    for (const auto &[text, expected] : cases)
        EXPECT_EQ(read_error(text).substr(0, std::string_view(expected).size()), expected) << text;
}

TEST(scene, what_is_written_reads_back_as_the_same)
{
    const std::string_view texts[] = {
        qz::tool::sample_scene, R"({"frames": [{}, {"name": "b", "effects": ["negative"], "gamma": {"point_count": 9}},
            {"selection_list": [3, 4294967295], "exposure": {"analog_gain": 0.1, "digital_gain": 3.4e38},
             "gamma": {"curve": [null, [0.1, 0.3], [1e-40, -0.0]], "point_count": 2}, "aux_size": {"height": 7},
             "lsc": {"enable": 2, "width": 2, "height": 1, "grid": [[[1.1, 2]], null, [[0, 0]], null]}},
            {"inherit": false, "lsc": {"enable": 1, "width": 0, "height": 2, "grid": [[[], []], null, null, null]}}]})"};
    for (const std::string_view text : texts) {
        const std::string written = scene_source(read_scene("s.json", text));
        EXPECT_TRUE(compare_files(read_compared("a", bytes_of(text)), read_compared("b", bytes_of(written))).empty())
            << written;
        EXPECT_EQ(scene_source(read_scene("w.json", written)), written);
    }
}

TEST(frame_choice, is_a_name_a_number_or_all)
{
    const scene read =
        read_scene("s.json", R"({"frames": [{"name": "a"}, {"name": "0"}, {"name": "b"}, {"name": "b"}]})");
    const std::tuple<std::optional<std::string>, size_t, size_t> cases[] = {
        {std::nullopt, 3, 4}, {"all", 0, 4}, {"a", 0, 1}, {"0", 0, 1}, {"1", 1, 2}, {"3", 3, 4}};
    for (const auto &[choice, first, last] : cases) {
        EXPECT_EQ(choose_frames(read, choice).first, first) << choice.value_or("none");
        EXPECT_EQ(choose_frames(read, choice).last, last) << choice.value_or("none");
    }
    for (const char *wrong : {"4", "", "-1", "1x", "c", "99999999999999999999999"})
        EXPECT_EQ(error_of([&] { choose_frames(read, wrong); }),
                  "frame: found \"" + std::string(wrong) + "\", expected 0 to 3, a frame's name, or all");
    EXPECT_EQ(error_of([&] { choose_frames(read, "b"); }),
              "frame: found \"b\", which 2 frames are called, expected a number");
}

} // namespace
