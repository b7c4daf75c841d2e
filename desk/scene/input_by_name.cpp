#include "desk/scene/input_by_name.h"

#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/one_of.h"
#include "desk/scene/frame_fields.h"

namespace qz::desk {

namespace {

// Fields that no library reads need no values.
bool is_used(const field &described)
{
    return !described.name.starts_with("unused");
}

constexpr std::string_view effects_name = "effects";
constexpr std::string_view shading_name = "lsc.enable"; // where there are grids

// Calls visitor with every field and what stands before its name.
template <typename Visitor>
void visit_fields(Visitor visitor)
{
    for (const input_group &group : input_groups()) {
        const std::string prefix = group.path.empty() ? "" : fmt::format("{}.", group.path);
        for (const field &described : group.fields) {
            if (is_used(described))
                visitor(described, prefix);
        }
    }
}

// Effects joined with "+", as a flag word.
std::optional<double> effects_word(std::string_view text)
{
    uint32_t word = 0;
    for (size_t start = 0, end = 0; end != std::string_view::npos; start = end + 1) {
        end = text.find('+', start);
        const std::optional<uint32_t> bit = effect_bit(text.substr(start, end - start));
        if (!bit)
            return std::nullopt;
        word |= *bit;
    }
    return word;
}

std::string expected_effects()
{
    return fmt::format("a flag word, or names joined with + of {}", fmt::join(effect_names, ", "));
}

constexpr value_words effect_words = {effects_word, expected_effects};

std::string known_names(std::string_view found)
{
    std::vector<std::string> names;
    for (const value_names &each : input_names())
        names.push_back(each.last.empty() ? each.first : fmt::format("{} to {}", each.first, each.last));
    const std::vector<std::string_view> views(names.begin(), names.end());
    return one_of(views, found);
}

} // namespace

named_value find_input(const value_option &option, std::string_view name, frame_inputs &inputs)
{
    if (name == effects_name)
        return {std::string(name), element::u32, &inputs.controls.effects, &effect_words};
    if (name == shading_name) {
        if (!inputs.lsc)
            option.fail("a frame without lsc", "one with lens shading grids");
        return {std::string(name), element::u8, &inputs.lsc->enable};
    }
    const std::string_view full = name == gain_name ? "exposure.analog_gain" : name;
    const size_t dot = full.rfind('.');
    const std::string_view path = dot == std::string_view::npos ? "" : full.substr(0, dot);
    for (const input_group &group : input_groups()) {
        if (group.path != path)
            continue;
        const std::optional<field_part> part = find_part(group.fields, full.substr(dot + 1)); // npos + 1 is 0
        if (!part || part->count != 1 || !is_used(*part->described))
            continue;
        void *const place = element_at(*part->described, group.record(inputs), part->first);
        if (name == gain_name)
            inputs.exposure->digital_gain = 1.0f;
        return {std::string(name), part->described->type, place};
    }
    option.fail(fmt::format("the name \"{}\"", name), known_names(name));
}

std::vector<value_names> input_names()
{
    std::vector<value_names> names = {{std::string(gain_name), "", values_of(element::f32)},
                                      {std::string(effects_name), "", expected_effects()},
                                      {std::string(shading_name), "", values_of(element::u8)}};
    visit_fields([&](const field &described, const std::string &prefix) {
        names.push_back({prefix + element_name(described, 0),
                         described.count > 1 ? prefix + element_name(described, described.count - 1) : "",
                         values_of(described.type)});
    });
    return names;
}

std::vector<std::string> single_input_names(const frame_inputs &inputs)
{
    std::vector<std::string> names = {std::string(gain_name), std::string(effects_name)};
    if (inputs.lsc)
        names.emplace_back(shading_name);
    visit_fields([&](const field &described, const std::string &prefix) {
        for (uint32_t i = 0; i < described.count; ++i)
            names.push_back(prefix + element_name(described, i));
    });
    return names;
}

} // namespace qz::desk
