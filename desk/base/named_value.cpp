#include "desk/base/named_value.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/base/numbers.h"

namespace qz::desk {

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

namespace {

double least_of(element type)
{
    return visit_type(type, [](auto typed) { return double{std::numeric_limits<decltype(typed)>::lowest()}; });
}

double most_of(element type)
{
    return visit_type(type, [](auto typed) { return double{std::numeric_limits<decltype(typed)>::max()}; });
}

} // namespace

std::string values_of(element type)
{
    return type == element::f32 ? "a number within single precision"
                                : fmt::format("an integer from {} to {}", least_of(type), most_of(type));
}

double named_value::least() const
{
    return least_of(type);
}

double named_value::most() const
{
    return most_of(type);
}

bool named_value::is_whole() const
{
    return type != element::f32;
}

double named_value::read(const value_option &option, std::string_view text) const
{
    if (words != nullptr && text.find_first_not_of("0123456789") != std::string_view::npos) {
        if (const std::optional<double> number = words->number(text))
            return *number;
        option.fail(fmt::format("\"{}\"", text), words->expected());
    }
    const std::optional<double> number = number_of(text);
    const bool fits = number && *number >= least() && *number <= most();
    if (!fits || (is_whole() && *number != std::floor(*number)))
        option.fail(fmt::format("\"{}\"", text), values_of(type));
    return *number;
}

void named_value::set(double value) const
{
    visit_type(type, [&](auto typed) {
        typed = static_cast<decltype(typed)>(value);
        std::memcpy(place, &typed, sizeof typed);
    });
}

double named_value::get() const
{
    return visit_type(type, [&](auto typed) {
        std::memcpy(&typed, place, sizeof typed);
        return static_cast<double>(typed);
    });
}

} // namespace qz::desk
