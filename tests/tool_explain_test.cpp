// What --explain says of a record, against the record itself.
#include <cmath>
#include <nlohmann/json.hpp>

#include "explain.h"
#include "inputs.h"
#include "program.h"

using nlohmann::json;
using namespace qz::tool;

namespace {

int64_t value_in(const record_rows &rows, size_t row, size_t k)
{
    const element type = rows.wide ? element::i32 : element::u16;
    const field values = {"", type, 0, 0, 0, true};
    return integer_at(values, rows.bytes + row * rows.size, 1 + k);
}

// The factors that the controls name for each value of a block.
struct explained_values {
    std::string_view block;
    std::string_view field;
    std::vector<int> control; // of each value; -1: none
};

const explained_values explained[] = {
    {"defect_pixel", "param", {-1, -1}},
    {"temporal_noise_reduction", "param", {0, -1, -1}},
    {"y_edge_enhancement", "param", {0, 0, 0, 0}},
    {"edge_enhancement", "param", {0, -1, 1}},
    {"noise_reduction", "param", {0, 0, -1, -1, -1}},
    {"xnr", "param", {-1}},
    {"long_3", "param", {-1, -1, -1}},
    {"long_7", "param", std::vector<int>(62, -1)},
    {"long_13", "param", std::vector<int>(6, -1)},
};

void expect_explained(const explained_values &each, const frame_origin &frame, const record_snapshot &record)
{
    SCOPED_TRACE(each.block);
    const auto layout = std::ranges::find(record_blocks(), each.block, &block_layout::name);
    const block_origin &block = frame.blocks[block_number(*layout)];
    const auto described = std::ranges::find(layout->fields, each.field, &field::name);
    const std::vector<int64_t> values = field_values(record, *layout, *described);
    ASSERT_EQ(values.size(), each.control.size());
    ASSERT_EQ(block.source, origin::tuning);
    ASSERT_TRUE(block.rows && block.record);
    const record_rows rows = rows_of(*block.record);
    EXPECT_EQ(rows.key(block.rows->lower), block.rows->lower_key);
    for (size_t k = 0; k < values.size(); ++k) {
        const double between = (1.0 - block.rows->weight) * static_cast<double>(value_in(rows, block.rows->lower, k)) +
                               block.rows->weight * static_cast<double>(value_in(rows, block.rows->upper, k));
        const double factor =
            each.control[k] < 0 ? 1.0 : block.controls.at(static_cast<size_t>(each.control[k])).amount;
        // Rounded before the factor, truncated behind it.
        EXPECT_NEAR(static_cast<double>(values[k]), between * factor, 0.51 * factor + 1.0) << "value " << k;
    }
}

TEST(explain, rows_weights_and_factors_lead_to_the_record)
{
    const scene scene = load_scene({});
    isp_session session(load_container({}), "the sample", scene);
    for (frame_inputs frame : scene.frames) {
        SCOPED_TRACE(frame.name);
        frame.controls.nr_mode = 2;
        frame.controls.edge_mode = 1;
        for (const int strength : {-100, 0, 60}) {
            frame.controls.nr_strength = static_cast<int8_t>(strength);
            frame.controls.sharpness = static_cast<int8_t>(strength / 2);
            const record_snapshot record = session.run(frame);
            const frame_origin origin = explain_frame(session, frame, record);
            for (const explained_values &each : explained)
                expect_explained(each, origin, record);
        }
    }
}

class explain_program : public program_test {
  protected:
    // Of the last frame: by block name, where its values came from.
    std::map<std::string, json> origins(const std::string &scene, const std::string &tuning)
    {
        write("scene.json", scene);
        write("tuning.json", tuning);
        const result made = run("run --explain --json --scene scene.json --tuning tuning.json");
        EXPECT_EQ(made.code, 0) << made.err;
        const json shown = json::parse(made.out);
        std::map<std::string, json> by_name;
        for (const json &block : shown.at("frames").at(0).at("blocks"))
            by_name[block.at("name")] = block.at("origin");
        return by_name;
    }
};

TEST_F(explain_program, names_what_is_missing_or_switched_off)
{
    struct expectation {
        std::string scene;
        std::string block;
        std::string from;
        std::string why;
    };
    const std::string tuning = R"({"records": [
        {"slot": "edge_enhancement", "family": 320, "set": 0, "version": 100, "rows": []},
        {"slot": "macc", "family": 320, "set": 0, "version": 100, "entries": []},
        {"slot": "long_3", "family": 768, "set": 0, "version": 100, "rows": []},
        {"slot": "xnr", "family": 320, "set": 1, "version": 100, "rows": [[0, 65535], [65535, 0]]},
        {"slot": "fringe_control", "family": 320, "set": 0, "version": 101, "count2": 259,
         "rows": [[256, 1, 2, 3, 4, 5, 6, 7, 8]]}]})";
    const expectation expected[] = {
        {R"({})", "xnr", "off", "nr_mode 0"},
        {R"({"nr_mode": 1})", "y_edge_enhancement", "defaults",
         "no set that the frame selects from has a record y_edge_enhancement"},
        {R"({"nr_mode": 1, "exposure": {"analog_gain": 200}})", "xnr", "tuning",
         "a value wraps round, as difference x distance of the rows has over 32 bits"},
        {R"({})", "long_3", "kept", "the record has no rows, gain: white_balance's gains with 9 fractional bits"},
        {R"({"edge_mode": 1})", "fringe_control", "tuning",
         "exponent: 3 and the shift, field_0_to_3 as the frame before left them, for want of a second table"},
        {R"({"nr_mode": 1})", "noise_reduction", "off", "nr_mode 1, on from 2"},
        {R"({"edge_mode": 1})", "edge_enhancement", "kept", "the record has no rows"},
        {R"({"edge_mode": 1})", "macc", "tuning",
         "identity, as none of 0 entries is a base set of key 0, as tuning_mode is not 1"},
        {R"({"colour": {}})", "white_balance", "defaults", "the frame has no scene"},
        {R"({"colour": {}, "scene": {}})", "white_balance", "inputs", "colour.white_balance_gain"},
        {R"({"colour": {}})", "black_level", "defaults", "the sensor has no description with a bit depth of 1 to 31"},
        {R"({"colour": {}, "effects": ["grey"]})", "yuv_to_rgb", "inputs", "effects, which replace colour.ccm"},
        {R"({})", "gamma_1", "kept", "the frame has no gamma curves"},
        {R"({"lsc": {"enable": 1, "width": 1, "height": 1, "grid": [null, null, null, null]}})", "lens_shading",
         "inputs",
         "refused: a size or a scaling term of frame or lsc is 0 or missing, or a table would have more than 3789 "
         "entries"},
        {R"({})", "block_22", "fixed", ""},
    };
    for (const expectation &each : expected) {
        SCOPED_TRACE(each.scene + " " + each.block);
        const json found = origins(R"({"frames": [)" + each.scene + "]}", tuning).at(each.block);
        EXPECT_EQ(found.at("from"), each.from);
        EXPECT_EQ(found.at("why"), each.why);
    }
}

TEST_F(explain_program, follows_rules_modes_and_replacement_to_the_record)
{
    // Offsets: the header's 24 bytes, 64 of three rules, 14 for a record of one xnr row.
    const std::string tuning = R"({"records": [
        {"slot": "rules", "version": 100, "rules": [
            {"kind": "frame", "op": ">", "threshold": 100, "set_index": 9},
            {"kind": "frame", "op": ">", "threshold": 100, "set_index": 3},
            {"kind": "aux_size", "op": ">=", "threshold": 0, "set_index": 0}]},
        {"slot": "xnr", "family": 320, "set": 0, "version": 100, "rows": [[256, 1]]},
        {"slot": "xnr", "family": 320, "set": 0, "version": 100, "rows": [[256, 2]]},
        {"slot": "xnr", "family": 320, "set": 1, "version": 100, "rows": [[256, 3]]},
        {"set_index": 3, "version": 100, "records": [
            {"slot": "xnr", "family": 320, "set": 2, "version": 101, "rows": [[256, 4], [1024, 8]]}]}]})";
    const auto record = [&](const std::string &frame) {
        return origins(R"({"frames": [{"nr_mode": 1, )" + frame + "}]}", tuning).at("xnr");
    };
    EXPECT_EQ(record(R"("tuning_mode": 1)").at("record"), json::parse(R"({"slot": "xnr", "id": 335, "version": 100,
        "set": 0, "set_index": 0, "rule": null, "offset": 102})"));
    EXPECT_EQ(record(R"("tuning_mode": 0)").at("record").at("set"), 1);
    // Set index 0 by a rule, or because a selection list puts it first.
    EXPECT_EQ(record(R"("aux_size": {})").at("record").at("rule"), 2);
    EXPECT_EQ(record(R"("aux_size": {}, "selection_list": [])").at("record").at("rule"), nullptr);
    const json ruled = record(R"("frame": {"size": {"width": 20, "height": 20}},
                                 "exposure": {"analog_gain": 2})");
    EXPECT_EQ(ruled.at("record"), json::parse(R"({"slot": "xnr", "id": 399, "version": 101, "set": 2, "set_index": 3,
        "rule": 1, "offset": 138})"));
    EXPECT_EQ(ruled.at("rows"),
              json::parse(R"({"count": 2, "lower": {"row": 0, "key": 256, "weight": 0.6666666666666667},
        "upper": {"row": 1, "key": 1024, "weight": 0.3333333333333333}})"));
}

} // namespace
