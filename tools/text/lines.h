// Lines of what belongs to a block: a label, then values.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qz::tool {

constexpr std::string_view line_indent = "       ";

std::string labelled_line(std::string_view label, std::string_view text);

// A list of numbers under its name, in lines of so many values each. all: every one; otherwise long lists show their
// first and last.
std::string number_lines(std::string_view name, const std::vector<int64_t> &values, size_t columns, bool all);

} // namespace qz::tool
