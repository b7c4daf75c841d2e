#include "tools/text/lines.h"

#include <algorithm>

#include <fmt/format.h>

namespace qz::tool {

namespace {

// Lists of more lines than this are abbreviated.
constexpr size_t short_list = 4;

size_t widest(const std::vector<int64_t> &values)
{
    size_t width = 1;
    for (const int64_t value : values)
        width = std::max(width, fmt::formatted_size("{}", value));
    return width;
}

} // namespace

std::string labelled_line(std::string_view label, std::string_view text)
{
    return fmt::format("{}{:<21} {}\n", line_indent, label, text);
}

std::string number_lines(std::string_view name, const std::vector<int64_t> &values, size_t columns, bool all)
{
    const size_t lines = (values.size() + columns - 1) / columns;
    const size_t width = widest(values);
    std::string text;
    for (size_t line = 0; line < lines; ++line) {
        if (!all && lines > short_list && line == 1) {
            text += labelled_line("", fmt::format("... {} values, --all shows them", values.size()));
            line = lines - 1;
        }
        const size_t first = line * columns;
        std::string numbers;
        for (size_t i = first; i < std::min(first + columns, values.size()); ++i)
            numbers += fmt::format("{}{:>{}}", i > first ? " " : "", values[i], width);
        // The index of a line's first value, where there are several lines.
        const std::string index = lines > 1 ? fmt::format("{}:", first) : "";
        text += labelled_line(fmt::format("{:<16}{:>5}", line == 0 ? name : "", index), numbers);
    }
    return text;
}

} // namespace qz::tool
