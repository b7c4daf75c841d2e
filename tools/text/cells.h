// Values of columns as text, the same in every locale.
#pragma once

#include <charconv>
#include <iterator>
#include <string>
#include <string_view>

#include "desk/sweep/columns.h"

namespace qz::tool {

// The shortest text that reads back as the same number.
template <typename Number>
void append_number(std::string &text, Number number)
{
    char digits[32];
    text.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
}

// In quotes where a comma, a quote or a line's end is in it.
void append_csv(std::string &text, std::string_view value);
void append_json(std::string &text, std::string_view value);

// A value as itself; texts through the function that the format has for them, nothing as "nothing".
void append_cell(std::string &text, const desk::cell &value, void (*append_text)(std::string &, std::string_view),
                 std::string_view nothing);

} // namespace qz::tool
