#include "tools/text/check_text.h"

#include <algorithm>

#include <fmt/format.h>

namespace qz::tool {

namespace {

constexpr std::string_view indent = "    ";

// Lines of words.
std::string wrapped(std::string_view words)
{
    constexpr size_t width = 100;
    std::string text;
    while (!words.empty()) {
        size_t length = words.size();
        if (indent.size() + length > width)
            length = std::min(words.rfind(' ', width - indent.size()), words.size());
        text += fmt::format("{}{}\n", indent, words.substr(0, length));
        words.remove_prefix(std::min(length + 1, words.size()));
    }
    return text;
}

std::string count_text(size_t count, std::string_view what)
{
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

} // namespace

bool finding_counts::reach(desk::severity level) const
{
    return std::any_of(counts_.begin() + static_cast<int>(level), counts_.end(),
                       [](size_t count) { return count > 0; });
}

std::string finding_counts::text() const
{
    using enum desk::severity;
    return fmt::format("{}, {}, {}", count_text(of(error), "error"), count_text(of(warning), "warning"),
                       count_text(of(note), "note"));
}

std::string check_text::add(const desk::finding &found)
{
    const size_t number = ++found_[found.code->code];
    if (!all_ && number > most_shown)
        return "";
    return fmt::format("{}: {}: {}: {}\n{}", desk::severity_names[static_cast<size_t>(found.level)],
                       desk::place_text(found.place), found.code->code, found.what,
                       number == 1 ? wrapped(found.code->why) : "");
}

std::string check_text::left_out() const
{
    std::string text;
    if (!all_)
        for (const auto &[code, count] : found_)
            if (count > most_shown)
                text += fmt::format("{} more of {}, --all shows them\n", count - most_shown, code);
    return text;
}

} // namespace qz::tool
