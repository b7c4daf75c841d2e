#include "desk/explain/explain.h"

#include <cmath>

#include <fmt/format.h>

#include "color/tone_curves.h"
#include "desk/explain/block_sources.h"
#include "frame/frame_decisions.h"
#include "qz_isp/gain.h"
#include "tuning/record_view.h"
#include "tuning/selection_rule.h"
#include "util/control_share.h"
#include "util/gain_bracket.h"

namespace qz::desk {

namespace {

std::string gain_why(const isp_exposure *exposure)
{
    if (exposure == nullptr)
        return "the frame has no exposure";
    if (!has_gains(exposure))
        return fmt::format("analog_gain {} or digital_gain {} is below 1", exposure->analog_gain,
                           exposure->digital_gain);
    const float gain = total_gain(*exposure);
    if (std::isinf(gain))
        return "the product of the frame's gains is infinite";
    return gain >= gain_modulus ? fmt::format("the low 16 bits of {:.0f}", gain) : "";
}

// Whether a value lies elsewhere than its row weights tell, for want of bits.
bool wraps(const row_origin &between, const std::vector<int32_t> &from, const std::vector<int32_t> &to, int64_t gain)
{
    bool found = false;
    for (size_t i = 1; i < from.size(); ++i) // the key comes first
        found |= interpolation_wraps(between.lower_key, between.upper_key, from[i], to[i], gain);
    return found;
}

// The blocks of one frame.
class block_explainer {
  public:
    block_explainer(const frame_facts &frame, const frame_selection &selection) : frame_(frame), selection_(selection)
    {}

    block_origin explain(const block_source &rule) const
    {
        block_origin result = {origin::inputs, std::string(rule.inputs)};
        if (rule.needs == gate::fixed)
            result.source = origin::fixed;
        else if (rule.needs == gate::counter)
            result.source = origin::context;
        const bool is_computed = add_gate(rule, result) && (rule.slot == tuning_slot::none || add_record(rule, result));
        // Kept gamma tables go through brightness and contrast as new ones do.
        if (!is_computed && rule.needs != gate::gamma)
            return result;
        for (const control_rule &control : rule.controls)
            add_control(control, result.controls);
        if (is_computed && rule.note != nullptr)
            rule.note(frame_, result);
        return result;
    }

  private:
    // False when the block is not computed in this frame.
    bool add_gate(const block_source &rule, block_origin &result) const
    {
        const frame_inputs &inputs = frame_.inputs;
        const isp_input_params &controls = inputs.controls;
        switch (rule.needs) {
        case gate::noise_reduction: return other(noise_reduction_on(controls), origin::off, "nr_mode 0", result);
        case gate::bayer_noise_reduction:
            return other(bayer_noise_reduction_on(controls), origin::off,
                         fmt::format("nr_mode {}, on from {}", controls.nr_mode, bayer_noise_reduction_from), result);
        case gate::edges: return other(edges_on(controls), origin::off, "edge_mode 0", result);
        case gate::white_balance:
            return given(inputs.scene.has_value(), "the frame has no scene", result) &&
                   given(inputs.colour.has_value(), "the frame has no colour", result);
        case gate::colour: return given(inputs.colour.has_value(), "the frame has no colour", result);
        case gate::black_level:
            return given(inputs.colour.has_value(), "the frame has no colour", result) &&
                   given(frame_.sensor != nullptr,
                         fmt::format("the sensor has no description with a bit depth of {} to {}", least_bit_depth,
                                     most_bit_depth),
                         result);
        case gate::gamma:
            return other(inputs.gamma.has_value(), origin::kept, "the frame has no gamma curves", result) &&
                   other(has_curve(rule.channel), origin::kept,
                         fmt::format("a curve of fewer than {} points", least_curve_points), result);
        case gate::lens_shading:
            return other(inputs.lsc.has_value() && inputs.lsc->enable != 0, origin::absent,
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
            result = {otherwise, std::string(why)};
        return is_given;
    }

    bool has_curve(size_t channel) const
    {
        const gamma_inputs &gamma = *frame_.inputs.gamma;
        return curve_points(gamma.curves.at(channel).has_value(), gamma.point_count) >= least_curve_points;
    }

    // False when the values are not the record's.
    bool add_record(const block_source &rule, block_origin &result) const
    {
        result.record = selection_.find(rule.slot);
        if (!result.record) {
            result.source = origin::defaults;
            result.add_first(fmt::format("no set that the frame selects from has a record {}", slot_name(rule.slot)));
            return false;
        }
        result.source = origin::tuning;
        if (!has_gain_rows(result.record->kind->layout)) {
            result.add(rule.reading);
            return true;
        }
        const record_rows rows = rows_of(*result.record);
        if (rows.count == 0) {
            result.source = rule.without_rows;
            result.add_first("the record has no rows");
            return false;
        }
        result.add(rule.reading);
        add_rows(rows, result);
        return true;
    }

    void add_rows(const record_rows &rows, block_origin &result) const
    {
        const auto gain = static_cast<int32_t>(frame_.origin.gain);
        const auto [lower, upper] = rows_around(gain, rows.count, [&](size_t row) { return rows.key(row); });
        const int64_t from = rows.key(lower);
        const int64_t to = rows.key(upper);
        const double weight = to > from ? static_cast<double>(gain - from) / static_cast<double>(to - from) : 0.0;
        result.rows = {rows.count, lower, upper, from, to, weight, {}};

        const std::vector<int32_t> from_values = row_values(*result.record, lower);
        const std::vector<int32_t> to_values = row_values(*result.record, upper);
        for (size_t i = 1; i < from_values.size(); ++i) // the key comes first
            result.rows->values.push_back(
                interpolate_linear(rows.key(lower), rows.key(upper), from_values[i], to_values[i], gain));
        if (wraps(*result.rows, from_values, to_values, gain))
            result.add("a value wraps round, as difference x distance of the rows has over 32 bits");
    }

    void add_control(const control_rule &rule, std::vector<control_origin> &controls) const
    {
        const isp_input_params &input = frame_.inputs.controls;
        const auto add = [&](std::string_view name, int8_t value, double amount) {
            controls.push_back({name, double(value), amount, std::string(rule.meaning)});
        };
        switch (rule.by) {
        case control::none: break;
        case control::nr_strength: add_strength("nr_strength", input.nr_strength, rule, controls); break;
        case control::sharpness: add_strength("sharpness", input.sharpness, rule, controls); break;
        case control::fringe_sharpness:
            add("sharpness", input.sharpness, std::abs(control_share(input.sharpness)));
            controls.back().meaning += std::to_string(fringe_control_end(input.sharpness));
            break;
        case control::hue: add("hue", input.hue, 180.0 * control_share(input.hue)); break;
        case control::saturation: add("saturation", input.saturation, frame_.origin.saturation); break;
        case control::brightness: add("brightness", input.brightness, brightness_exponent(input.brightness)); break;
        case control::contrast: add("contrast", input.contrast, contrast_exponent(input.contrast)); break;
        }
    }

    // Without a strength values are not limited either.
    static void add_strength(std::string_view name, int8_t value, const control_rule &rule,
                             std::vector<control_origin> &controls)
    {
        std::string meaning(rule.meaning);
        if (value != 0 && rule.strength.limit != 0)
            meaning += fmt::format(", up to {}", rule.strength.limit);
        controls.push_back({name, double(value), strength_factor(value, rule.strength), std::move(meaning)});
    }

    const frame_facts &frame_;
    const frame_selection &selection_;
};

} // namespace

frame_origin explainer::explain(const frame_inputs &inputs, const record_snapshot &record,
                                const std::vector<bool> &wanted) const
{
    const isp_context &context = session_.context();
    const isp_input_params &controls = inputs.controls;
    const isp_exposure *exposure = address_of(inputs.exposure);
    const frame_selection selection(session_, filed_, inputs);
    frame_origin frame = {
        .tuning = session_.tuning_name(),
        .set_count = context.set_count,
        .tuning_mode = controls.tuning_mode,
        .set_order = set_order(controls.tuning_mode),
        .index_0_first = inputs.selection_list.has_value(),
        .gain = current_gain(exposure),
        .gain_why = gain_why(exposure),
        .saturation = saturation_factor(address_of(inputs.colour), address_of(inputs.scene), controls.saturation,
                                        controls.effects),
        .rules = selection.rules(),
        .blocks = {},
    };
    const frame_facts facts = {inputs, usable_sensor(context.cmc), selection.selected(), record, frame};
    const block_explainer each(facts, selection);
    for (const block_source &source : block_sources()) {
        const bool is_wanted = wanted.empty() || wanted[frame.blocks.size()];
        frame.blocks.push_back(is_wanted ? each.explain(source) : block_origin{});
    }
    return frame;
}

} // namespace qz::desk
