// What --explain says of a record, against the record itself.
#include <cmath>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>

#include "desk/explain/block_sources.h"
#include "desk/explain/explain.h"
#include "desk/scene/frame_fields.h"
#include "desk/tuning/pack.h"
#include "program.h"
#include "tools/base/inputs.h"

using nlohmann::json;
using namespace qz::desk;
using namespace qz::tool;

namespace {

// A block of a frame: what explain says of it, and what the record holds.
struct shown {
    const block_layout &layout;
    const block_origin &origin;
    const frame_origin &frame;
    const frame_inputs &inputs;
    const record_snapshot &record;
    const record_snapshot &plain; // the same frame without brightness and contrast
    const isp_tuning_set &tuning;
    byte_view container;

    std::vector<double> field(std::string_view name) const
    {
        const auto described = std::ranges::find(layout.fields, name, &field::name);
        const std::vector<int64_t> values = field_values(record, layout, *described);
        return {values.begin(), values.end()};
    }

    // The bytes of the container that it says the values are from.
    selected_record source() const
    {
        selected_record filed = *origin.record;
        filed.copy = reinterpret_cast<const isp_record *>(container.data() + *filed.offset);
        EXPECT_EQ(read_le<uint16_t>(container, *filed.offset + 6), filed.id);
        EXPECT_EQ(container[*filed.offset + 4], filed.version);
        return filed;
    }
    double half_word(size_t at) const { return read_le<uint16_t>(container, *source().offset + at); }

    // The number behind the words.
    double said(const std::string &words) const
    {
        const size_t at = origin.why.find(words);
        EXPECT_NE(at, std::string::npos) << origin.why;
        return std::stod(origin.why.substr(at + words.size()));
    }
    bool says(const char *words) const { return contains(origin.why, words); }
};

double between(const row_origin &rows, double lower, double upper)
{
    return (1 - rows.weight) * lower + rows.weight * upper;
}

// The record's values at the gain, from the rows and weights.
std::vector<double> tuned_values(const shown &block)
{
    const row_origin &rows = *block.origin.rows;
    const std::vector<int32_t> lower = row_values(block.source(), rows.lower);
    const std::vector<int32_t> upper = row_values(block.source(), rows.upper);
    EXPECT_EQ(lower[0], rows.lower_key);
    EXPECT_EQ(upper[0], rows.upper_key);
    EXPECT_NEAR(between(rows, lower[0], upper[0]), rows.weight > 0 ? block.frame.gain : lower[0], 1e-6);
    EXPECT_EQ(rows.values.size(), lower.size() - 1);
    for (size_t i = 1; i < lower.size(); ++i)
        EXPECT_NEAR(rows.values.at(i - 1), between(rows, lower[i], upper[i]), 0.51) << "value " << i - 1;
    return {rows.values.begin(), rows.values.end()};
}

void expect_near(const std::vector<double> &found, const std::vector<double> &expected, double tolerance)
{
    ASSERT_EQ(found.size(), expected.size());
    for (size_t i = 0; i < found.size(); ++i)
        EXPECT_NEAR(found[i], expected[i], tolerance) << "value " << i;
}

// Tuned values times the factors of the controls, which name the values they are for and a limit.
std::function<void(const shown &)> rows_to(const char *name)
{
    return [name](const shown &block) {
        std::vector<double> values = tuned_values(block);
        if (block.says("field[0..1] times 32"))
            values[0] *= 32, values[1] *= 32;
        for (const control_origin &control : block.origin.controls) {
            std::smatch told;
            static const std::regex words(R"(factor of (\w+)\[(\d+)(?:\.\.(\d+))?\](?:, up to (\d+))?)");
            ASSERT_TRUE(std::regex_match(control.meaning, told, words)) << control.meaning;
            EXPECT_EQ(told[1], name);
            const size_t first = std::stoul(told[2]);
            for (size_t k = first; k <= (told[3].matched ? std::stoul(told[3]) : first); ++k)
                values.at(k) = std::min(std::floor(values[k] * control.amount + 1e-3),
                                        told[4].matched ? std::stod(told[4]) : HUGE_VAL);
        }
        expect_near(block.field(name), values, 0.01);
    };
}

void check_long_5(const shown &block)
{
    ASSERT_TRUE(block.says("curves times the scales of the first row"));
    const std::vector<double> values = tuned_values(block);
    const std::vector<int32_t> first = row_values(block.source(), 0);
    const std::vector<double> curves[] = {block.field("curve_a"), block.field("curve_b")};
    for (size_t i = 0; i < 128; ++i)
        EXPECT_EQ(curves[i / 64][i % 64], std::min(std::floor(values[i] * first[129 + i / 64] / 512), 8191.0));
    expect_near(block.field("param"), {values.begin() + 130, values.end()}, 0);
}

void check_fringe_control(const shown &block)
{
    ASSERT_EQ(block.origin.controls.size(), 1);
    const control_origin &sharpness = block.origin.controls[0];
    std::vector<double> values = tuned_values(block);
    const double end = sharpness.meaning == "part of the way of field_4_to_7 to 65535" ? 65535 : 0;
    for (size_t k = 0; k < 4; ++k)
        values[k] += (end - values[k]) * sharpness.amount;
    const double unit = std::exp2(block.field("exponent")[0] - block.said("exponent: "));
    std::vector<double> found;
    for (const char *name : {"field_4_to_7", "field_8_to_9", "field_10_to_11"})
        for (const double field : block.field(name))
            found.push_back(field * unit);
    expect_near(found, values, unit + 1);

    const auto *extra = static_cast<const isp_fringe_control_extra_row *>(block.tuning.fringe_control.extra);
    EXPECT_EQ(extra == nullptr, block.says("field_0_to_3 as the frame before left them"));
    const row_origin &rows = *block.origin.rows;
    for (size_t k = 0; extra != nullptr && k < 4; ++k)
        EXPECT_NEAR(block.field("field_0_to_3")[k] * unit,
                    between(rows, extra[rows.lower].field_0_to_3[k], extra[rows.upper].field_0_to_3[k]), unit + 1);
}

void check_ctc(const shown &block)
{
    ASSERT_EQ(block.origin.controls.size(), 1);
    const double factor = block.origin.controls[0].amount;
    const double unit = std::exp2(block.field("shift")[0] - block.half_word(20));
    for (size_t k = 0; k < 6; ++k)
        EXPECT_NEAR(block.field("mantissa")[k] * unit, block.half_word(8 + 2 * k) * factor, unit + 1);
    for (size_t k = 0; k < 4; ++k)
        EXPECT_EQ(block.field("value")[k], block.half_word(22 + 2 * k));
    // What the factor is made of.
    const double control = block.origin.controls[0].value;
    double made = block.says("colour.saturation") ? block.said("colour.saturation ") : 1;
    made *= control > 0 ? 1 + 4 * control / 127 : 1 + control / 128;
    if (block.says("less scene.saturation_decrement"))
        made = std::max(made - block.said("less scene.saturation_decrement "), 0.0);
    EXPECT_NEAR(factor, block.says("times 1.5") ? made * 1.5 : made, 1e-6);
}

using matrix = std::array<double, 4>;

matrix operator*(const matrix &a, const matrix &b)
{
    return {a[0] * b[0] + a[1] * b[2], a[0] * b[1] + a[1] * b[3], a[2] * b[0] + a[3] * b[2], a[2] * b[1] + a[3] * b[3]};
}

matrix sector_of(const shown &block, double entry, size_t sector)
{
    const std::vector<int32_t> values = row_values(block.source(), static_cast<size_t>(entry)); // type, key, matrices
    const auto at = [&](size_t i) { return values[2 + 4 * sector + i] / 8192.0; };
    return {at(0), at(1), at(2), at(3)};
}

void check_macc(const shown &block)
{
    ASSERT_EQ(block.origin.controls.size(), 1);
    const double angle = block.origin.controls[0].amount * 3.1416 / 180;
    const matrix turn = {std::cos(angle), -std::sin(angle), std::sin(angle), std::cos(angle)};
    const uint8_t shift = block.record.record.macc_shift.payload.value;
    double largest = 0;
    for (size_t sector = 0; sector < 16; ++sector) {
        matrix expected = {1, 0, 0, 1};
        if (block.says("the base set"))
            expected = sector_of(block, block.said("entry "), sector);
        if (block.says("times entry"))
            expected = sector_of(block, block.said("times entry "), sector) * expected;
        expected = turn * expected;
        for (size_t i = 0; i < 4; ++i) {
            largest = std::max(largest, std::abs(expected[i]));
            EXPECT_NEAR(block.record.record.macc.payload.coeff[sector][i], expected[i] * (8192 >> shift), 1.5);
        }
    }
    EXPECT_EQ(shift, largest >= 1 ? std::floor(std::log2(largest)) + 1 : 0); // "bit length of the integer part"
}

void check_copied(const shown &block)
{
    const bool first = block.layout.name == "rec_13_b";
    EXPECT_TRUE(block.says(first ? "bytes 8 and 9" : "bytes 10 and 11"));
    EXPECT_EQ(block.field("value")[0], first                                ? block.half_word(8)
                                       : block.origin.record->version > 100 ? block.half_word(10)
                                                                            : 0);
}

void check_white_balance(const shown &block)
{
    for (size_t k = 0; k < 4; ++k)
        EXPECT_NEAR(std::ldexp(block.field("gain")[k], static_cast<int>(block.field("shift")[0]) - 16),
                    block.inputs.colour->white_balance_gain[k], 1e-4);
}

void check_matrix(const shown &block)
{
    const float *m = block.inputs.colour->ccm;
    for (size_t row = 0; row < 3 && block.origin.why == "colour.ccm"; ++row) {
        const float *of = m + 3 * row;
        const double folded[] = {of[0] + of[1] + of[2], of[1] - of[0] - of[2], of[0] - of[2]};
        for (size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(std::ldexp(block.field("coeff")[3 * row + k], -static_cast<int>(block.field("frac_bits")[0])),
                        folded[k], 1e-3);
    }
    EXPECT_EQ(block.origin.why != "colour.ccm", block.inputs.name == "sepia");
}

// The table of the frame without brightness and contrast, bent by their exponents.
void check_gamma(const shown &block)
{
    ASSERT_EQ(block.origin.controls.size(), 2);
    const double whole = block.origin.controls[0].amount;
    const double halves = block.origin.controls[1].amount;
    const std::vector<double> found = block.field("table");
    const auto described = std::ranges::find(block.layout.fields, "table", &field::name);
    const std::vector<int64_t> plain = field_values(block.plain, block.layout, *described);
    const auto max = static_cast<double>(std::ranges::max(plain));
    const double half = std::floor(max / 2);
    for (size_t i = 0; i < found.size(); ++i) {
        const double y = std::round(max * std::pow(static_cast<double>(plain[i]) / max, whole));
        const double low = half * std::pow(y / half, halves);
        const double high = max - (max - half) * std::pow((max - y) / (max - half), halves);
        EXPECT_NEAR(found[i], y <= half ? low : high, 0.51) << "entry " << i;
    }
}

struct block_check {
    std::string_view block;
    std::function<void(const shown &)> check; // where it is computed from a record or the inputs
};

// Named without a check: what stands in their reason.
const block_check checks[] = {
    {"white_balance", check_white_balance},
    {"defect_pixel",
     [](const shown &block) {
         rows_to("param")(block);
         const auto &gains = block.record.record.white_balance.payload.gain;
         expect_near(block.field("gain"), {std::begin(gains), std::end(gains)}, 0);
     }},
    {"long_3",
     [](const shown &block) {
         rows_to("param")(block);
         const aic_white_balance &balance = block.record.record.white_balance.payload;
         for (size_t k = 0; k < 4; ++k)
             EXPECT_EQ(block.field("gain")[k], std::floor(std::ldexp(balance.gain[k], int(balance.shift) - 7)));
     }},
    {"yuv_to_rgb", check_matrix},
    {"temporal_noise_reduction", rows_to("param")},
    {"rec_3",
     [](const shown &block) {
         expect_near(block.field("value"), {block.half_word(8), block.half_word(10), block.half_word(12)}, 0);
     }},
    {"y_edge_enhancement", rows_to("param")},
    {"fringe_control", check_fringe_control},
    {"block_9",
     [](const shown &block) { EXPECT_EQ(block.field("value")[0], block.inputs.controls.block9_control ^ 1); }},
    {"chroma_nr", rows_to("field")},
    {"ctc", check_ctc},
    {"rec_13_a", check_copied},
    {"rec_13_b", check_copied},
    {"edge_enhancement", rows_to("param")},
    {"macc", check_macc},
    {"macc_shift", nullptr}, // with macc
    {"noise_reduction", rows_to("param")},
    {"black_level",
     [](const shown &block) {
         for (size_t k = 0; k < 4; ++k)
             EXPECT_NEAR(block.field("level")[k] * 1023 / 65536, block.inputs.colour->black_level[k], 0.02);
     }},
    {"xnr", rows_to("param")},
    {"rgb_to_yuv", nullptr}, // fixed
    {"rec_16",
     [](const shown &block) {
         const std::vector<double> values = block.field("value");
         expect_near({values[3], values[4], values[5]}, {block.half_word(10), block.half_word(8), block.half_word(10)},
                     0);
     }},
    {"block_21", nullptr}, // fixed
    {"block_22", nullptr}, // fixed
    {"block_23", nullptr}, // fixed
    {"long_5", check_long_5},
    {"long_6", rows_to("param")},
    {"long_7", rows_to("param")},
    {"long_13", rows_to("param")},
    {"long_11", rows_to("param")},
    {"long_12", rows_to("param")},
    {"frame_counter", nullptr}, // compared with an untuned session
    {"gamma_0", check_gamma},
    {"gamma_1", check_gamma},
    {"gamma_2", check_gamma},
    {"lens_shading",
     [](const shown &block) { EXPECT_TRUE(block.says("the black levels as factors")); }}, // tables: resampled
};

// How the sample frames are varied.
struct variation {
    const char *name;
    std::function<void(frame_inputs &frame)> apply;
};

void set_controls(frame_inputs &frame, uint32_t mode, int8_t control)
{
    isp_input_params &controls = frame.controls;
    controls.nr_mode = controls.edge_mode = mode;
    controls.nr_strength = controls.sharpness = controls.hue = controls.saturation = control;
    controls.brightness = static_cast<int8_t>(control / 2);
    controls.contrast = static_cast<int8_t>(control / 4);
}

const variation variations[] = {
    {"as it is", [](frame_inputs &) {}},
    {"lowest", [](frame_inputs &frame) { set_controls(frame, 2, -128); }},
    {"highest", [](frame_inputs &frame) { set_controls(frame, 2, 127); }},
    {"between rows",
     [](frame_inputs &frame) {
         set_controls(frame, 2, 30);
         frame.exposure->analog_gain *= 1.7f;
     }},
    {"switched off", [](frame_inputs &frame) { set_controls(frame, 0, 0); }},
    {"bare", [](frame_inputs &frame) { frame = {}; }},
};

double value_of(const isp_input_params &controls, std::string_view name)
{
    const std::span<const field> fields = input_groups()[0].fields;
    return static_cast<double>(integer_at(*std::ranges::find(fields, name, &field::name), &controls, 0));
}

// What is not from a record is the same without tuning; what is kept is the frame's before.
void expect_untouched(const shown &block, const record_snapshot &untuned, const record_snapshot &before)
{
    if (block.origin.source == origin::tuning)
        return;
    const record_snapshot &same = block.origin.source == origin::kept ? before : untuned;
    for (const field &described : block.layout.fields)
        EXPECT_EQ(field_values(block.record, block.layout, described), field_values(same, block.layout, described))
            << described.name;
}

// The sources that each block had.
using sources_seen = std::map<std::string_view, std::set<origin>>;

void check_frames(const byte_buffer &container, sources_seen &seen)
{
    const scene scene = load_scene({});
    isp_session session(container, "the tuning", scene);
    isp_session flat_session(container, "the tuning", scene);
    isp_session untuned_session(pack_container("none", R"({"records": []})"), "none", scene);
    const explainer explainer(session);
    record_snapshot before = take_snapshot({}, 0);
    for (const variation &variation : variations) {
        for (frame_inputs frame : scene.frames) {
            SCOPED_TRACE(frame.name + ", " + variation.name);
            variation.apply(frame);
            frame_inputs flat = frame;
            flat.controls.brightness = flat.controls.contrast = 0;
            const record_snapshot plain = flat_session.run(flat);
            const record_snapshot untuned = untuned_session.run(frame);
            const record_snapshot record = session.run(frame);
            const frame_origin origins = explainer.explain(frame, record);
            const isp_tuning_set tuning = session.selection(frame);
            for (const block_layout &layout : record_blocks()) {
                SCOPED_TRACE(layout.name);
                const block_origin &origin = origins.blocks[block_number(layout)];
                const shown block = {layout, origin, origins, frame, record, plain, tuning, container};
                seen[layout.name].insert(origin.source);
                const auto known = std::ranges::find(checks, layout.name, &block_check::block);
                if (known == std::end(checks))
                    ADD_FAILURE() << "a block that has no row in checks";
                else if (known->check && (origin.source == origin::tuning || origin.source == origin::inputs))
                    known->check(block);
                for (const control_origin &control : origin.controls)
                    EXPECT_EQ(control.value, value_of(frame.controls, control.control));
                expect_untouched(block, untuned, before);
            }
            before = record;
        }
    }
}

TEST(explain, leads_to_every_value_of_the_record)
{
    sources_seen seen;
    check_frames(load_container({}), seen);
    // Up to every limit; records without rows.
    check_frames(pack_container("steep", R"({"records": [
        {"slot": "y_edge_enhancement", "family": 320, "set": 0, "version": 100, "rows": [[900, 9, 8191, 5000, 0]]},
        {"slot": "chroma_nr_alt", "family": 320, "set": 0, "version": 100,
         "rows": [[300, 9000, 9000, 9, 7000, 8191, 0, 1, 2], [1600, 0, 9000, 20, 5000, 7, 9, 1, 8100]]},
        {"slot": "noise_reduction", "family": 320, "set": 0, "version": 100, "rows": [[256, 65535, 14000, 3, 4, 5]]},
        {"slot": "long_5", "family": 768, "set": 0, "version": 100, "rows": []},
        {"slot": "long_6", "family": 768, "set": 0, "version": 100, "rows": []},
        {"slot": "long_7", "family": 768, "set": 0, "version": 100, "rows": []}]})"),
                 seen);
    for (const block_source &source : block_sources())
        EXPECT_TRUE(source.slot == tuning_slot::none || seen[source.block].contains(origin::tuning))
            << "the sample tuning has no record for " << source.block;
    // Each source that a block can have was there.
    EXPECT_EQ(seen["fringe_control"], (std::set{origin::tuning, origin::defaults, origin::off}));
    EXPECT_EQ(seen["black_level"], (std::set{origin::inputs, origin::defaults}));
    EXPECT_EQ(seen["gamma_2"], (std::set{origin::inputs, origin::kept}));
    EXPECT_EQ(seen["lens_shading"], (std::set{origin::inputs, origin::absent}));
    EXPECT_EQ(seen["long_6"], (std::set{origin::tuning, origin::defaults}));
    EXPECT_EQ(seen["long_7"], (std::set{origin::tuning, origin::kept}));
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
        {R"({"effects": ["macc_2"]})", "macc", "tuning",
         "identity, as none of 0 entries is a base set of key 0, as tuning_mode is not 1, times its fixed table for "
         "effect macc_2"},
        {R"({"colour": {}})", "white_balance", "defaults", "the frame has no scene"},
        {R"({"colour": {}, "scene": {}})", "white_balance", "inputs", "colour.white_balance_gain"},
        {R"({"colour": {}})", "black_level", "defaults", "the sensor has no description with a bit depth of 1 to 31"},
        {R"({"colour": {}, "effects": ["grey"]})", "yuv_to_rgb", "inputs", "effects, which replace colour.ccm"},
        {R"({})", "gamma_1", "kept", "the frame has no gamma curves"},
        {R"({"gamma": {"curve": [null, null, [1]]}})", "gamma_1", "inputs", "gamma.curve[1]"},
        {R"({"gamma": {"curve": [null, null, [1]]}})", "gamma_2", "kept", "a curve of fewer than 2 points"},
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
        "upper": {"row": 1, "key": 1024, "weight": 0.3333333333333333}, "values": [5]})"));
}

} // namespace
