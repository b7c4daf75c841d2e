#include "desk/scene/named_input.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/error.h"
#include "desk/base/numbers.h"
#include "desk/base/one_of.h"
#include "desk/scene/frame_fields.h"

namespace qz::desk {

namespace {

constexpr std::string_view effects_name = "effects";

// Fields that no library reads need no values.
bool is_used(const field &described)
{
    return !described.name.starts_with("unused");
}

std::string known_names(std::string_view found)
{
    std::vector<std::string> names = {std::string(gain_name), std::string(effects_name), "lsc.enable"};
    for (const input_group &group : input_groups()) {
        const std::string prefix = group.path.empty() ? "" : fmt::format("{}.", group.path);
        for (const field &described : group.fields) {
            if (is_used(described))
                names.push_back(element_names(described, prefix));
        }
    }
    const std::vector<std::string_view> views(names.begin(), names.end());
    return one_of(views, found);
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

} // namespace

std::pair<std::string_view, std::string_view> value_option::name_and_value(std::string_view expected) const
{
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos)
        fail("no \"=\"", std::string(expected));
    return {text.substr(0, equals), text.substr(equals + 1)};
}

void value_option::fail(std::string found, std::string expected) const
{
    desk::fail({std::nullopt, fmt::format("{} {}", option, text), std::move(found), std::move(expected)});
}

double named_input::least() const
{
    return visit_type(type, [](auto typed) { return double{std::numeric_limits<decltype(typed)>::lowest()}; });
}

double named_input::most() const
{
    return visit_type(type, [](auto typed) { return double{std::numeric_limits<decltype(typed)>::max()}; });
}

bool named_input::is_whole() const
{
    return type != element::f32;
}

double named_input::value(const value_option &option, std::string_view text) const
{
    if (name == effects_name && text.find_first_not_of("0123456789") != std::string_view::npos) {
        if (const std::optional<double> word = effects_word(text))
            return *word;
        option.fail(fmt::format("\"{}\"", text),
                    fmt::format("a flag word, or names joined with + of {}", fmt::join(effect_names, ", ")));
    }
    const std::optional<double> number = number_of(text);
    const bool fits = number && *number >= least() && *number <= most();
    if (!fits || (is_whole() && *number != std::floor(*number)))
        option.fail(fmt::format("\"{}\"", text), is_whole() ? fmt::format("an integer from {} to {}", least(), most())
                                                            : "a number within single precision");
    return *number;
}

void named_input::set(double value) const
{
    visit_type(type, [&](auto typed) {
        typed = static_cast<decltype(typed)>(value);
        std::memcpy(place, &typed, sizeof typed);
    });
}

named_input find_input(const value_option &option, std::string_view name, frame_inputs &inputs)
{
    if (name == effects_name)
        return {std::string(name), element::u32, &inputs.controls.effects};
    if (name == "lsc.enable") {
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

} // namespace qz::desk
