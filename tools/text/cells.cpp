#include "tools/text/cells.h"

#include <nlohmann/json.hpp>

#include "desk/json/json.h"

namespace qz::tool {

using namespace desk;

void append_csv(std::string &text, std::string_view value)
{
    if (value.find_first_of(",\"\r\n") == std::string_view::npos) {
        text += value;
        return;
    }
    text += '"';
    for (const char character : value)
        text.append(character == '"' ? 2 : 1, character);
    text += '"';
}

void append_json(std::string &text, std::string_view value)
{
    text += desk::json(value).dump(-1, ' ', false, desk::json::error_handler_t::replace);
}

void append_cell(std::string &text, const cell &value, void (*append_text)(std::string &, std::string_view),
                 std::string_view nothing)
{
    if (const auto *const whole = std::get_if<int64_t>(&value))
        append_number(text, *whole);
    else if (const auto *const real = std::get_if<double>(&value))
        append_number(text, *real);
    else if (const auto *const words = std::get_if<std::string_view>(&value))
        append_text(text, *words);
    else
        text += nothing;
}

} // namespace qz::tool
