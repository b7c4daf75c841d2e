#include "explain.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "block_sources.h"
#include "qz_isp/color.h"

namespace qz::tool {

namespace {

void add_gain(const frame_inputs &inputs, frame_origin &frame)
{
    frame.gain = 256;
    if (!inputs.exposure) {
        frame.gain_why = "the frame has no exposure";
        return;
    }
    const auto [unused, analog, digital] = *inputs.exposure;
    if (!(analog >= 1.0f && digital >= 1.0f)) {
        frame.gain_why = fmt::format("analog_gain {} or digital_gain {} is below 1", analog, digital);
        return;
    }
    const float gain = digital * analog * 256.0f;
    const float low_bits = std::fmod(gain, 65536.0f);
    frame.gain = std::isfinite(low_bits) ? static_cast<uint32_t>(low_bits) : 0;
    if (std::isinf(gain))
        frame.gain_why = "the product of the frame's gains is infinite";
    else if (gain >= 65536.0f)
        frame.gain_why = fmt::format("the low 16 bits of {:.0f}", gain);
}

float saturation_factor(const frame_inputs &inputs)
{
    float factor = inputs.colour && inputs.colour->saturation > 0.0f ? inputs.colour->saturation : 1.0f;
    compute_saturation_factor(inputs.controls.saturation, &factor);
    if (inputs.scene && inputs.scene->saturation_decrement > 0.0f)
        factor = std::max(factor - inputs.scene->saturation_decrement, 0.0f);
    return (inputs.controls.effects & ISP_EFFECT_VIVID) != 0 ? factor * 1.5f : factor;
}

// Linear from 1.0 at 0 to the ends.
double strength_factor(int strength, const factor_rule &rule)
{
    return strength > 0 ? 1.0 + strength * (rule.at_127 - 1.0) / 127.0
                        : 1.0 + strength * (1.0 - rule.at_minus_128) / 128.0;
}

// -1 to 1, both ends included.
double signed_part(int value)
{
    return value > 0 ? value / 127.0 : value / 128.0;
}

class explainer {
  public:
    explainer(const isp_session &session, const frame_inputs &inputs, const frame_selection &selection,
              const record_snapshot &record, const frame_origin &frame)
        : inputs_(inputs), selection_(selection), record_(record), frame_(frame), cmc_(session.context().cmc)
    {}

    block_origin explain(const block_source &rule) const
    {
        block_origin result = {origin::inputs, "", std::nullopt, std::nullopt, {}};
        add_note(rule.inputs, result);
        if (rule.needs == gate::fixed)
            result.source = origin::fixed;
        else if (rule.needs == gate::counter)
            result.source = origin::context;
        const bool is_computed =
            add_gate(rule.needs, rule.block, result) && (rule.slot.empty() || add_record(rule, result));
        // Kept gamma tables go through brightness and contrast as new ones do.
        if (!is_computed && rule.needs != gate::gamma)
            return result;
        for (const factor_rule &factor : rule.factors)
            add_control(factor, result.controls);
        if (is_computed)
            add_notes(rule.block, result);
        return result;
    }

  private:
    // False when the block is not computed in this frame.
    bool add_gate(gate needs, std::string_view block, block_origin &result) const
    {
        const isp_input_params &controls = inputs_.controls;
        switch (needs) {
        case gate::noise_reduction: return other(controls.nr_mode >= 1, origin::off, "nr_mode 0", result);
        case gate::bayer_noise_reduction:
            return other(controls.nr_mode >= 2, origin::off, fmt::format("nr_mode {}, on from 2", controls.nr_mode),
                         result);
        case gate::edges: return other(controls.edge_mode >= 1, origin::off, "edge_mode 0", result);
        case gate::white_balance:
            return given(inputs_.scene.has_value(), "the frame has no scene", result) &&
                   given(inputs_.colour.has_value(), "the frame has no colour", result);
        case gate::colour: return given(inputs_.colour.has_value(), "the frame has no colour", result);
        case gate::black_level:
            return given(inputs_.colour.has_value(), "the frame has no colour", result) &&
                   given(has_sensor(), "the sensor has no description with a bit depth of 1 to 31", result);
        case gate::gamma:
            return other(inputs_.gamma.has_value(), origin::kept, "the frame has no gamma curves", result) &&
                   other(has_curve(block), origin::kept, "a curve of fewer than 2 points", result);
        case gate::lens_shading:
            return other(inputs_.lsc.has_value() && inputs_.lsc->enable != 0, origin::absent,
                         "the frame has no lsc with enable 1", result);
        default: return true;
        }
    }

    static bool given(bool is_given, std::string_view why, block_origin &result)
    {
        return other(is_given, origin::defaults, why, result);
    }

    static bool other(bool is_given, origin otherwise, std::string_view why, block_origin &result)
    {
        if (!is_given)
            result = {otherwise, std::string(why), std::nullopt, std::nullopt, {}};
        return is_given;
    }

    // Without a curve of its own a channel has a straight line.
    bool has_curve(std::string_view block) const
    {
        const auto channel = static_cast<size_t>(block.back() - '0');
        return !inputs_.gamma->curves.at(channel) || inputs_.gamma->point_count >= 2;
    }

    bool has_sensor() const
    {
        const isp_sensor_description *sensor = cmc_ != nullptr ? cmc_->sensor_description : nullptr;
        return sensor != nullptr && sensor->bit_depth >= 1 && sensor->bit_depth <= 31;
    }

    // False when the values are not the record's.
    bool add_record(const block_source &rule, block_origin &result) const
    {
        result.record = selection_.find(rule.slot);
        if (!result.record) {
            result.source = origin::defaults;
            put_first(fmt::format("no set that the frame selects from has a record {}", rule.slot), result);
            return false;
        }
        result.source = origin::tuning;
        add_note(rule.reading, result);
        const record_shape shape = result.record->kind->shape;
        if (shape == record_shape::macc)
            add_base_set(result);
        else if (shape != record_shape::fields)
            return add_rows(rule, result);
        return true;
    }

    bool add_rows(const block_source &rule, block_origin &result) const
    {
        const record_rows rows = rows_of(*result.record);
        if (rows.count > 0) {
            result.rows = around(rows);
            if (wraps(*result.record, *result.rows))
                add_note("a value wraps round, as difference x distance of the rows has over 32 bits", result);
            if (result.record->kind->shape == record_shape::fringe)
                add_fringe_tail(result);
            if (result.record->kind->name == "chroma_nr")
                add_note("field[0..1] times 32", result);
            return true;
        }
        const bool has_defaults = rule.block == "long_5" || rule.block == "long_6";
        result.source = has_defaults ? origin::defaults : origin::kept;
        result.why = rule.inputs;
        put_first("the record has no rows", result);
        return false;
    }

    // What follows the rows in the record's newer versions.
    void add_fringe_tail(block_origin &result) const
    {
        const isp_fringe_control_slot &slot = selection_.selected().fringe_control;
        add_note(fmt::format("exponent: {} and the shift", static_cast<uint8_t>(slot.count2)), result);
        if (slot.extra == nullptr)
            add_note("field_0_to_3 as the frame before left them, for want of a second table", result);
    }

    static void add_note(std::string_view note, block_origin &result)
    {
        if (!note.empty())
            result.why += fmt::format("{}{}", result.why.empty() ? "" : ", ", note);
    }

    static void put_first(std::string_view why, block_origin &result)
    {
        const std::string notes = std::exchange(result.why, std::string(why));
        add_note(notes, result);
    }

    // The rows that the library interpolates between: of equal keys the first, outside the table the nearer end.
    row_origin around(const record_rows &rows) const
    {
        const int64_t gain = frame_.gain;
        std::optional<size_t> lower;
        std::optional<size_t> upper;
        for (size_t row = 0; row < rows.count; ++row) {
            const int64_t key = rows.key(row);
            if (key <= gain && (!lower || key > rows.key(*lower)))
                lower = row;
            if (key >= gain && (!upper || key < rows.key(*upper)))
                upper = row;
        }
        const size_t low = lower ? *lower : *upper;
        const size_t high = upper ? *upper : *lower;
        const int64_t low_key = rows.key(low);
        const int64_t high_key = rows.key(high);
        const double weight =
            high_key > low_key ? static_cast<double>(gain - low_key) / static_cast<double>(high_key - low_key) : 0.0;
        return {rows.count, low, high, low_key, high_key, weight};
    }

    // Whether a value lies elsewhere than its row weights tell, for want of bits.
    bool wraps(const selected_record &record, const row_origin &between) const
    {
        constexpr double too_large = 2147483648.0;
        const std::vector<int32_t> from = row_values(record, between.lower);
        const std::vector<int32_t> to = row_values(record, between.upper);
        const auto distance = static_cast<double>(frame_.gain - between.lower_key);
        bool found = static_cast<double>(between.upper_key - between.lower_key) >= too_large;
        for (size_t i = 1; i < from.size(); ++i) // the key comes first
            found |= std::abs(static_cast<double>(int64_t{to[i]} - from[i]) * distance) >= too_large;
        return found && between.lower_key != between.upper_key;
    }

    // Which entry of a multi-axis record the sectors start from.
    void add_base_set(block_origin &result) const
    {
        const record_rows entries = rows_of(*result.record);
        const int64_t target = inputs_.scene ? inputs_.scene->macc_target : 0;
        const bool nearest = frame_.tuning_mode == 1;
        std::optional<size_t> base;
        for (size_t i = 0; i < entries.count; ++i) {
            if (entries.key(i) != 0) // the type comes first; 0: a base set
                continue;
            const int64_t distance = std::abs(entry_key(entries, i) - target);
            const bool better = nearest ? !base || distance < std::abs(entry_key(entries, *base) - target)
                                        : !base && entry_key(entries, i) == 0;
            if (better)
                base = i;
        }
        const std::string wanted = nearest ? fmt::format("nearest to macc_target {}", target)
                                           : std::string("of key 0, as tuning_mode is not 1");
        if (base)
            add_note(fmt::format("entry {} of {} (key {}), the base set {}", *base, entries.count,
                                 entry_key(entries, *base), wanted),
                     result);
        else
            add_note(fmt::format("identity, as none of {} entries is a base set {}", entries.count, wanted), result);
        add_effect_tables(entries, result);
    }

    // The last entry of an effect's type replaces its fixed table; effect 5 has no type.
    void add_effect_tables(const record_rows &entries, block_origin &result) const
    {
        for (unsigned effect = 1; effect <= 5; ++effect) {
            if (((inputs_.controls.effects >> (effect - 1)) & 1) == 0)
                continue;
            std::string table = "its fixed table";
            for (size_t i = 0; i < entries.count && effect < 5; ++i) {
                if (entries.key(i) == effect)
                    table = fmt::format("entry {}", i);
            }
            add_note(fmt::format("times {} for effect macc_{}", table, effect), result);
        }
    }

    static int64_t entry_key(const record_rows &entries, size_t row)
    {
        return read_le<uint16_t>({entries.bytes + row * entries.size, 4}, 2);
    }

    void add_control(const factor_rule &rule, std::vector<control_origin> &controls) const
    {
        const isp_input_params &input = inputs_.controls;
        switch (rule.by) {
        case control::nr_strength: controls.push_back(strength("nr_strength", input.nr_strength, rule)); break;
        case control::sharpness: controls.push_back(strength("sharpness", input.sharpness, rule)); break;
        case control::fringe_sharpness:
            controls.push_back({"sharpness", double(input.sharpness), std::abs(signed_part(input.sharpness)),
                                input.sharpness < 0 ? "part of the way of field_4_to_7 to 0"
                                                    : "part of the way of field_4_to_7 to 65535"});
            break;
        case control::hue:
            controls.push_back({"hue", double(input.hue), 180.0 * signed_part(input.hue), std::string(rule.meaning)});
            break;
        case control::saturation:
            controls.push_back({"saturation", double(input.saturation), frame_.saturation, std::string(rule.meaning)});
            break;
        case control::tone: add_tone(input, controls); break;
        }
    }

    // Without a strength values are not limited either.
    static control_origin strength(std::string_view name, int value, const factor_rule &rule)
    {
        std::string meaning(rule.meaning);
        if (value != 0 && rule.limit != 0)
            meaning += fmt::format(", up to {}", rule.limit);
        return {name, double(value), strength_factor(value, rule), std::move(meaning)};
    }

    static void add_tone(const isp_input_params &input, std::vector<control_origin> &controls)
    {
        const double brightness =
            input.brightness > 0 ? 1.0 - input.brightness * 0.75 / 127.0 : 1.0 - input.brightness * 4.0 / 128.0;
        const double contrast =
            input.contrast > 0 ? 1.0 + input.contrast * 4.0 / 127.0 : 1.0 + input.contrast * 0.8 / 128.0;
        controls.push_back({"brightness", double(input.brightness), brightness, "exponent of the whole curve"});
        controls.push_back({"contrast", double(input.contrast), contrast, "exponent of the curve's two halves"});
    }

    // What only some frames have.
    void add_notes(std::string_view block, block_origin &result) const
    {
        const uint32_t effects = inputs_.controls.effects;
        if (block == "yuv_to_rgb" &&
            (effects & (ISP_EFFECT_GREY | ISP_EFFECT_TWO_LEVEL | ISP_EFFECT_WARM_GREY | ISP_EFFECT_COOL_GREY)) != 0)
            result.why = "effects, which replace colour.ccm";
        if (block.starts_with("gamma_") && (effects & (ISP_EFFECT_NEGATIVE | ISP_EFFECT_NEGATIVE_ALT)) != 0)
            add_note("mirrored by effects", result);
        if (block.starts_with("gamma_") && (effects & ISP_EFFECT_TWO_LEVEL) != 0)
            add_note("in two levels by effects", result);
        if (block == "lens_shading")
            add_shading(result);
        if (block == "ctc")
            add_saturation(result);
    }

    void add_shading(block_origin &result) const
    {
        if (record_.record.lens_shading.payload.enable == 0)
            result.why = fmt::format("refused: a size or a scaling term of frame or lsc is 0 or missing, or a table "
                                     "would have more than {} entries",
                                     AIC_LENS_SHADING_MAX_ENTRIES);
        else if (inputs_.colour && has_sensor())
            add_note("the black levels as factors", result);
    }

    // What the factor is made of beside the control.
    void add_saturation(block_origin &result) const
    {
        if (inputs_.colour && inputs_.colour->saturation > 0.0f)
            add_note(fmt::format("colour.saturation {}", inputs_.colour->saturation), result);
        if (inputs_.scene && inputs_.scene->saturation_decrement > 0.0f)
            add_note(fmt::format("less scene.saturation_decrement {}", inputs_.scene->saturation_decrement), result);
        if ((inputs_.controls.effects & ISP_EFFECT_VIVID) != 0)
            add_note("times 1.5 for effect vivid", result);
    }

    const frame_inputs &inputs_;
    const frame_selection &selection_;
    const record_snapshot &record_;
    const frame_origin &frame_;
    const isp_cmc *cmc_;
};

} // namespace

std::string_view origin_name(origin source)
{
    constexpr std::string_view names[] = {"tuning", "inputs", "fixed", "context", "defaults", "off", "kept", "absent"};
    return names[static_cast<size_t>(source)];
}

frame_origin explain_frame(const isp_session &session, const frame_inputs &inputs, const record_snapshot &record)
{
    const frame_selection selection(session, inputs);
    frame_origin frame = {
        session.tuning_name(),     session.context().set_count,       inputs.controls.tuning_mode, 0, "",
        saturation_factor(inputs), inputs.selection_list.has_value(), selection.rules(),           {}};
    add_gain(inputs, frame);
    const explainer each(session, inputs, selection, record, frame);
    for (const block_layout &block : record_blocks())
        frame.blocks.push_back(each.explain(*std::ranges::find(block_sources(), block.name, &block_source::block)));
    return frame;
}

} // namespace qz::tool
