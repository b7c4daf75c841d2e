// What is said of where the values of a record came from.
#include <cmath>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include <gtest/gtest.h>

#include "desk/explain/block_sources.h"
#include "desk/explain/computed_frames.h"
#include "desk/explain/explain.h"
#include "desk/explain/frame_json.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

// Tuned values times the factors of the controls, which name the values they are for and a limit.
std::vector<double> controlled_values(const block_origin &origin)
{
    std::vector<double> values(origin.rows->values.begin(), origin.rows->values.end());
    if (contains(origin.why, "field[0..1] times 32"))
        values[0] *= 32, values[1] *= 32;
    for (const control_origin &control : origin.controls) {
        std::smatch told;
        static const std::regex words(R"(factor of \w+\[(\d+)(?:\.\.(\d+))?\](?:, up to (\d+))?)");
        EXPECT_TRUE(std::regex_match(control.meaning, told, words)) << control.meaning;
        const size_t first = std::stoul(told[1]);
        const double limit = told[3].matched ? std::stod(told[3]) : HUGE_VAL;
        for (size_t k = first; k <= (told[2].matched ? std::stoul(told[2]) : first); ++k)
            values.at(k) = std::min(std::floor(values[k] * control.amount + 1e-3), limit);
    }
    return values;
}

// Blocks from a record whose values do not follow from rows and factors alone.
constexpr std::string_view made_otherwise[] = {
    "rec_3",          // copied
    "fringe_control", // one exponent for all fields
    "ctc",            // mantissas with one shift
    "rec_13_a",       // copied
    "rec_13_b",       // copied
    "macc",           // entries, turned and multiplied
    "macc_shift",     // the same
    "rec_16",         // copied between fixed values
    "long_5",         // curves times the first row's scales
};

TEST(explain, rows_and_factors_lead_to_the_values_of_the_record)
{
    const scene sample = read_scene("sample", qz::tool::sample_scene);
    isp_session session(pack_container("sample", qz::tool::sample_tuning), "sample", sample);
    const explainer explainer(session);
    std::set<std::string_view> unseen;
    for (const block_source &source : block_sources())
        if (source.slot != tuning_slot::none && std::ranges::count(made_otherwise, source.block) == 0)
            unseen.insert(source.block);
    for (const int control : {-128, 0, 30, 127})
        for (frame_inputs frame : sample.frames) {
            frame.controls.nr_strength = frame.controls.sharpness = static_cast<int8_t>(control);
            const record_snapshot record = session.run(frame);
            const frame_origin origins = explainer.explain(frame, record);
            for (const block_layout &block : record_blocks()) {
                const block_origin &origin = origins.blocks[block_number(block)];
                if (!origin.rows || std::ranges::count(made_otherwise, block.name) != 0)
                    continue;
                unseen.erase(block.name);
                const std::vector<int64_t> found = field_values(record, block, block.fields[0]);
                const std::vector<double> expected = controlled_values(origin);
                ASSERT_EQ(found.size(), expected.size()) << block.name;
                for (size_t i = 0; i < found.size(); ++i)
                    EXPECT_NEAR(static_cast<double>(found[i]), expected[i], 0.01) << block.name << ' ' << control;
            }
        }
    for (const std::string_view block : unseen)
        ADD_FAILURE() << "no frame of the sample has rows for " << block;
}

TEST(explain, only_what_is_said_to_be_tuned_depends_on_the_tuning)
{
    const scene sample = read_scene("sample", qz::tool::sample_scene);
    isp_session tuned(pack_container("sample", qz::tool::sample_tuning), "sample", sample);
    isp_session untuned(pack_container("none", R"({"records": []})"), "none", sample);
    const explainer explainer(tuned);
    std::set<std::string_view> changed;
    for (const frame_inputs &frame : sample.frames) {
        const record_snapshot record = tuned.run(frame);
        const record_snapshot without = untuned.run(frame);
        const frame_origin origins = explainer.explain(frame, record);
        for (const block_layout &block : record_blocks()) {
            const bool is_tuned = origins.blocks[block_number(block)].source == origin::tuning;
            for (const field &described : block.fields) {
                const bool same = field_values(record, block, described) == field_values(without, block, described);
                EXPECT_TRUE(same || is_tuned) << block.name << ' ' << described.name;
                if (!same)
                    changed.insert(block.name);
            }
        }
    }
    changed.insert("macc_shift"); // the sample's integer parts have as many bits as those of an identity
    for (const block_source &source : block_sources())
        EXPECT_TRUE(source.slot == tuning_slot::none || changed.contains(source.block)) << source.block;
}

TEST(explain, follows_rules_modes_and_replacement_to_the_record)
{
    // Offsets: the header's 24 bytes, 64 of three rules, 14 for a record of one xnr row.
    const byte_buffer container = pack_container("t", R"({"records": [
        {"slot": "rules", "version": 100, "rules": [
            {"kind": "frame", "op": ">", "threshold": 100, "set_index": 9},
            {"kind": "frame", "op": ">", "threshold": 100, "set_index": 3},
            {"kind": "aux_size", "op": ">=", "threshold": 0, "set_index": 0}]},
        {"slot": "xnr", "family": 320, "set": 0, "version": 100, "rows": [[256, 1]]},
        {"slot": "xnr", "family": 320, "set": 0, "version": 100, "rows": [[256, 2]]},
        {"slot": "xnr", "family": 320, "set": 1, "version": 100, "rows": [[256, 3]]},
        {"set_index": 3, "version": 100, "records": [
            {"slot": "xnr", "family": 320, "set": 2, "version": 101, "rows": [[256, 4], [1024, 8]]}]}]})");
    const auto origin = [&](const std::string &frame) {
        const scene one = read_scene("s", R"({"frames": [{"nr_mode": 1, )" + frame + "}]}");
        isp_session session(container, "t", one);
        const json shown = frame_json(compute_frames(session, one, {0, 1}, true)[0]);
        return std::ranges::find(shown.at("blocks"), "xnr", [](const json &block) { return block.at("name"); })
            ->at("origin");
    };
    EXPECT_EQ(origin(R"("tuning_mode": 1)").at("record"), json::parse(R"({"slot": "xnr", "id": 335, "version": 100,
        "set": 0, "set_index": 0, "rule": null, "offset": 102})"));
    EXPECT_EQ(origin(R"("tuning_mode": 0)").at("record").at("set"), 1);
    // Set index 0 by a rule, or because a selection list puts it first.
    EXPECT_EQ(origin(R"("aux_size": {})").at("record").at("rule"), 2);
    EXPECT_EQ(origin(R"("aux_size": {}, "selection_list": [])").at("record").at("rule"), nullptr);
    const json ruled = origin(R"("frame": {"size": {"width": 20, "height": 20}}, "exposure": {"analog_gain": 2})");
    EXPECT_EQ(ruled.at("record"), json::parse(R"({"slot": "xnr", "id": 399, "version": 101, "set": 2, "set_index": 3,
        "rule": 1, "offset": 138})"));
    EXPECT_EQ(ruled.at("rows"), json::parse(R"({"count": 2,
        "lower": {"row": 0, "key": 256, "weight": 0.6666666666666667},
        "upper": {"row": 1, "key": 1024, "weight": 0.3333333333333333}, "values": [5]})"));
}

} // namespace
