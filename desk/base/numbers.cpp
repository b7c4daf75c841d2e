#include "desk/base/numbers.h"

#include <charconv>

#ifndef __cpp_lib_to_chars
#include <cerrno>
#include <cstdlib>
#include <string>
#endif

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
#ifdef __cpp_lib_to_chars
    return all_of<double>(text);
#else
    // A C library without other locales. It takes more than the decimal numbers that std::from_chars() does.
    const std::string ended(text);
    const size_t first = ended.starts_with('-') ? 1 : 0;
    if (ended.find_first_of(".0123456789infINF", first) != first || ended.find_first_of("xX") != std::string::npos)
        return std::nullopt;
    char *stop = nullptr;
    errno = 0;
    const double number = std::strtod(ended.c_str(), &stop);
    const bool all = stop == ended.data() + ended.size();
    return all && errno == 0 ? std::optional(number) : std::nullopt;
#endif
}

std::optional<uint64_t> whole_number_of(std::string_view text)
{
    return all_of<uint64_t>(text);
}

} // namespace qz::desk
