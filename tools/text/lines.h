// A list of numbers under its name, in rows.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qz::tool {

// Appends lines of so many values each. all: every row; otherwise long lists show their first and last.
void print_rows(std::string &text, std::string_view name, const std::vector<int64_t> &values, size_t columns, bool all);

} // namespace qz::tool
