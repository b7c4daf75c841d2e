#include "desk/base/numbers.h"

#include <charconv>

namespace qz::desk {

namespace {

template <typename Number>
std::optional<Number> all_of(std::string_view text)
{
    Number number = 0;
    const char *end = text.data() + text.size();
    const auto [stop, problem] = std::from_chars(text.data(), end, number);
    return problem == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<double> number_of(std::string_view text)
{
    return all_of<double>(text);
}

std::optional<uint64_t> whole_number_of(std::string_view text)
{
    return all_of<uint64_t>(text);
}

} // namespace qz::desk
