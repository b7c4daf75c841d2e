#include "desk/sweep/ranges.h"

#include <algorithm>
#include <cfloat>
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

// All values of a 32-bit input; single precision has fewer.
constexpr double max_count = 4294967296.0;

struct value_range {
    double low;
    double high;
    bool whole;
};

value_range values_of(element type)
{
    return visit_type(type, [](auto typed) {
        using limits = std::numeric_limits<decltype(typed)>;
        return value_range{double{limits::lowest()}, double{limits::max()}, limits::is_integer};
    });
}

// An option and what messages say about it.
struct range_option {
    std::string_view text;

    [[noreturn]] void fail(std::string found, std::string expected) const
    {
        desk::fail({std::nullopt, fmt::format("over {}", text), std::move(found), std::move(expected)});
    }

    double number(std::string_view digits, const value_range &allowed, std::string expected) const
    {
        const std::optional<double> number = number_of(digits);
        const bool good = number && *number >= allowed.low && *number <= allowed.high &&
                          (!allowed.whole || *number == std::floor(*number));
        if (!good)
            fail(fmt::format("\"{}\"", digits), std::move(expected));
        return *number;
    }

    double value(std::string_view digits, const value_range &allowed) const
    {
        return number(digits, allowed,
                      allowed.whole ? fmt::format("an integer from {} to {}", allowed.low, allowed.high)
                                    : "a number within single precision");
    }
};

// Fields that no library reads need no values.
bool is_used(const field &described)
{
    return !described.name.starts_with("unused");
}

std::string known_names(std::string_view found)
{
    std::vector<std::string> names = {"gain", "effects", "lsc.enable"};
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

std::pair<element, void *> find_input(const range_option &option, std::string_view name, frame_inputs &inputs)
{
    if (name == "effects")
        return {element::u32, &inputs.controls.effects};
    if (name == "lsc.enable") {
        if (!inputs.lsc)
            option.fail("a frame without lsc", "one with lens shading grids");
        return {element::u8, &inputs.lsc->enable};
    }
    const std::string_view full = name == "gain" ? "exposure.analog_gain" : name;
    const size_t dot = full.rfind('.');
    const std::string_view path = dot == std::string_view::npos ? "" : full.substr(0, dot);
    for (const input_group &group : input_groups()) {
        if (group.path != path)
            continue;
        const std::optional<field_part> part = find_part(group.fields, full.substr(dot + 1)); // npos + 1 is 0
        if (part && part->count == 1 && is_used(*part->described))
            return {part->described->type, element_at(*part->described, group.record(inputs), part->first)};
    }
    option.fail(fmt::format("the name \"{}\"", name), known_names(name));
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

void read_list(const range_option &option, std::string_view values, sweep_range &range)
{
    const value_range allowed = values_of(range.type);
    size_t start = 0;
    for (size_t end = 0; end != std::string_view::npos; start = end + 1) {
        end = values.find(',', start);
        const std::string_view text = values.substr(start, end - start);
        const std::optional<double> word = range.name == "effects" ? effects_word(text) : std::optional<double>();
        if (range.name == "effects" && !word && text.find_first_not_of("0123456789") != std::string_view::npos)
            option.fail(fmt::format("\"{}\"", text),
                        fmt::format("a flag word, or names joined with + of {}", fmt::join(effect_names, ", ")));
        const double value = word ? *word : option.value(text, allowed);
        if (std::ranges::find(range.list, value) != range.list.end())
            option.fail(fmt::format("{} twice", text), "every value once");
        range.list.push_back(value);
    }
    range.count = range.list.size();
}

void read_steps(const range_option &option, std::string_view values, sweep_range &range)
{
    const value_range allowed = values_of(range.type);
    const size_t dots = values.find("..");
    const size_t colon = std::min(values.find(':', dots), values.size());
    range.first = option.value(values.substr(0, dots), allowed);
    range.last = option.value(values.substr(dots + 2, colon - dots - 2), allowed);
    range.step = 1;
    if (colon < values.size())
        range.step = option.number(values.substr(colon + 1), {DBL_MIN, DBL_MAX, allowed.whole},
                                   allowed.whole ? "a whole step above 0" : "a step above 0");
    if (range.last < range.first)
        option.fail(fmt::format("{} before {}", range.first, range.last), "the lower end first");

    // A last value that rounding alone puts beyond the end belongs to the range.
    const double largest = std::max(std::abs(range.first), std::abs(range.last));
    const double rounding = allowed.whole ? 0 : 4 * DBL_EPSILON * largest / range.step;
    const double steps = std::floor((range.last - range.first) / range.step + rounding);
    if (!(steps < max_count))
        option.fail(fmt::format("{} values", steps + 1), "at most 4294967296");
    range.count = static_cast<uint64_t>(steps) + 1;
}

sweep_range read_range(const range_option &option, frame_inputs &inputs)
{
    const size_t equals = option.text.find('=');
    if (equals == std::string_view::npos)
        option.fail("no \"=\"", "NAME=FIRST..LAST:STEP or NAME=VALUE,VALUE");
    const std::string_view name = option.text.substr(0, equals);
    const std::string_view values = option.text.substr(equals + 1);
    const auto [type, input] = find_input(option, name, inputs);
    sweep_range range = {std::string(name), type, input, {}, 0, 0, 0, 0};
    if (values.find("..") == std::string_view::npos)
        read_list(option, values, range);
    else
        read_steps(option, values, range);
    return range;
}

} // namespace

double sweep_range::value(uint64_t place) const
{
    return list.empty() ? std::min(first + static_cast<double>(place) * step, last) : list[static_cast<size_t>(place)];
}

sweep_ranges::sweep_ranges(const std::vector<std::string> &options, frame_inputs &inputs)
{
    std::vector<std::pair<const void *, std::string>> taken;
    const auto take = [&](const range_option &option, const void *address, const std::string &name) {
        for (const auto &[other, other_name] : taken) {
            if (other == address)
                option.fail(fmt::format("the input that {} sets already", other_name), "every input once");
        }
        taken.emplace_back(address, name);
    };
    for (const std::string &text : options) {
        const range_option option = {text};
        const sweep_range &range = ranges_.emplace_back(read_range(option, inputs));
        take(option, range.input, range.name);
        if (range.name == "gain") {
            inputs.exposure->digital_gain = 1.0f;
            take(option, &inputs.exposure->digital_gain, range.name);
        }
        if (range.count > UINT64_MAX / rows_)
            option.fail("more than 2^64 rows", "fewer");
        rows_ *= range.count;
    }
}

void sweep_ranges::apply(uint64_t row) const
{
    for (auto range = ranges_.rbegin(); range != ranges_.rend(); ++range) {
        const double value = range->value(row % range->count);
        visit_type(range->type, [&](auto typed) {
            typed = static_cast<decltype(typed)>(value);
            std::memcpy(range->input, &typed, sizeof typed);
        });
        row /= range->count;
    }
}

} // namespace qz::desk
