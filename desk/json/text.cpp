#include "desk/json/text.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

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

std::string quoted(const std::string &text)
{
    if (std::ranges::all_of(text, [](char each) { return each >= ' ' && each <= '~' && each != '"' && each != '\\'; }))
        return '"' + text + '"';
    return json(text).dump(-1, ' ', false, json::error_handler_t::replace);
}

std::string scalar_text(const json &value)
{
    if (value.is_string())
        return quoted(value.get_ref<const std::string &>());
    if (value.is_number_integer())
        return value.is_number_unsigned() ? fmt::format_int(value.get<uint64_t>()).str()
                                          : fmt::format_int(value.get<int64_t>()).str();
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

// The value on one line; empty when it does not fit there.
std::string flat_text(const json &value, size_t width)
{
    if (!std::ranges::all_of(value, [](const json &item) { return is_scalar(item) || is_short_list(item); }))
        return {};
    std::string text = value.is_object() ? "{" : "[";
    bool first = true;
    for (const auto &member : value.items()) {
        text += first ? "" : ", ";
        if (value.is_object())
            text += quoted(member.key()) + ": ";
        text += short_text(member.value());
        if (text.size() + 1 > width)
            return {};
        first = false;
    }
    return text + (value.is_object() ? "}" : "]");
}

// What the writer keeps before it hands it on.
constexpr size_t enough = 65536;

} // namespace

void json_writer::write(const json &value)
{
    print(value, indent(), indent());
    if (text_.size() >= enough)
        flush();
}

void json_writer::open(const json &head, std::string_view list)
{
    const size_t around = indent();
    text_ += '{';
    print_members(head, around, true);
    text_ += head.empty() ? "" : ",";
    new_line(around + step);
    text_ += fmt::format("\"{}\": [", list);
    open_.push_back({around, false});
}

void json_writer::begin_item()
{
    text_ += std::exchange(open_.back().has_items, true) ? "," : "";
    new_line(indent());
}

void json_writer::close(const json &tail)
{
    const size_t around = open_.back().indent;
    open_.pop_back();
    new_line(around + step);
    text_ += ']';
    print_members(tail, around, false);
    new_line(around);
    text_ += '}';
}

void json_writer::finish()
{
    text_ += '\n';
    flush();
}

void json_writer::flush()
{
    sink_(text_);
    text_.clear();
}

// Of a value that begins at the place that is reached.
size_t json_writer::indent() const
{
    return open_.empty() ? 0 : open_.back().indent + 2 * step;
}

void json_writer::new_line(size_t indent)
{
    text_ += '\n';
    text_.append(indent, ' ');
}

void json_writer::print(const json &value, size_t indent, size_t column)
{
    if (is_scalar(value)) {
        text_ += scalar_text(value);
        return;
    }
    const std::string flat = flat_text(value, line_width > column ? line_width - column : 0);
    if (!flat.empty()) {
        text_ += flat;
    } else if (value.is_object()) {
        text_ += '{';
        print_members(value, indent, true);
        new_line(indent);
        text_ += '}';
    } else if (std::ranges::all_of(value, [](const json &item) { return is_scalar(item) || is_short_list(item); })) {
        print_filled(value, indent);
    } else {
        print_list(value, indent);
    }
}

// Members with scalar values share lines; the others have lines of their own. indent: of the object.
void json_writer::print_members(const json &value, size_t indent, bool first)
{
    size_t column = line_width;
    for (const auto &member : value.items()) {
        const bool scalar = is_scalar(member.value());
        const std::string name = quoted(member.key()) + ": ";
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
}

void json_writer::print_list(const json &value, size_t indent)
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

void json_writer::print_filled(const json &value, size_t indent)
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

std::string json_text(const json &value)
{
    std::string text;
    json_writer writer([&](std::string_view part) { text += part; });
    writer.write(value);
    writer.finish();
    return text;
}

} // namespace qz::desk
