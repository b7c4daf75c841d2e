#include "desk/base/json_text.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace qz::desk {

namespace {

constexpr size_t line_width = 116;
constexpr size_t step = 2;
// Lists of up to this many numbers share a line.
constexpr size_t short_list = 4;

bool is_scalar(const json &value)
{
    return !value.is_structured();
}

bool is_short_list(const json &value)
{
    return value.is_array() && value.size() <= short_list && std::ranges::all_of(value, is_scalar);
}

std::string scalar_text(const json &value)
{
    return value.dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string short_text(const json &value)
{
    if (!value.is_array())
        return scalar_text(value);
    std::vector<std::string> parts;
    for (const json &item : value)
        parts.push_back(scalar_text(item));
    return fmt::format("[{}]", fmt::join(parts, ", "));
}

// "name": value or value, on one line; empty when the value does not fit there.
std::string flat_text(const json &value, size_t width)
{
    std::string text = value.is_object() ? "{" : "[";
    bool first = true;
    for (const auto &member : value.items()) {
        const bool nested = !is_scalar(member.value()) && !is_short_list(member.value());
        if (nested || (value.is_object() && !is_scalar(member.value()) && member.value().size() > short_list))
            return {};
        text += first ? "" : ", ";
        if (value.is_object())
            text += scalar_text(json(member.key())) + ": ";
        text += short_text(member.value());
        if (text.size() + 1 > width)
            return {};
        first = false;
    }
    return text + (value.is_object() ? "}" : "]");
}

class json_printer {
  public:
    void print(const json &value, size_t indent, size_t column)
    {
        if (is_scalar(value)) {
            text_ += scalar_text(value);
            return;
        }
        const std::string flat = flat_text(value, line_width > column ? line_width - column : 0);
        if (!flat.empty())
            text_ += flat;
        else if (value.is_object())
            print_object(value, indent);
        else if (std::ranges::all_of(value, [](const json &item) { return is_scalar(item) || is_short_list(item); }))
            print_filled(value, indent);
        else
            print_list(value, indent);
    }

    std::string take() { return std::move(text_); }

  private:
    void new_line(size_t indent)
    {
        text_ += '\n';
        text_.append(indent, ' ');
    }

    // Members with scalar values share lines; the others have lines of their own.
    void print_object(const json &value, size_t indent)
    {
        text_ += '{';
        size_t column = line_width;
        bool first = true;
        for (const auto &member : value.items()) {
            const bool scalar = is_scalar(member.value());
            const std::string name = scalar_text(json(member.key())) + ": ";
            const std::string flat = scalar ? name + scalar_text(member.value()) : name;
            text_ += first ? "" : ",";
            if (scalar && column + flat.size() + 3 <= line_width) {
                text_ += ' ';
                column += 2;
            } else {
                new_line(indent + step);
                column = indent + step;
            }
            text_ += flat;
            column = scalar ? column + flat.size() : line_width;
            if (!scalar)
                print(member.value(), indent + step, indent + step + name.size());
            first = false;
        }
        new_line(indent);
        text_ += '}';
    }

    void print_list(const json &value, size_t indent)
    {
        text_ += '[';
        bool first = true;
        for (const json &item : value) {
            text_ += first ? "" : ",";
            new_line(indent + step);
            print(item, indent + step, indent + step);
            first = false;
        }
        new_line(indent);
        text_ += ']';
    }

    void print_filled(const json &value, size_t indent)
    {
        text_ += '[';
        new_line(indent + step);
        size_t column = indent + step;
        bool first = true;
        for (const json &item : value) {
            const std::string part = short_text(item);
            if (!first) {
                text_ += ',';
                if (column + part.size() + 3 > line_width) {
                    new_line(indent + step);
                    column = indent + step;
                } else {
                    text_ += ' ';
                }
            }
            text_ += part;
            column += part.size() + 2;
            first = false;
        }
        new_line(indent);
        text_ += ']';
    }

    std::string text_;
};

} // namespace

std::string json_text(const json &value)
{
    json_printer printer;
    printer.print(value, 0, 0);
    return printer.take() + "\n";
}

} // namespace qz::desk
