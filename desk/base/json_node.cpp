#include "desk/base/json_node.h"

#include <algorithm>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/error.h"
#include "desk/base/json_parse.h"
#include "desk/base/one_of.h"

namespace qz::desk {

namespace {

std::string shortened(const std::string &text)
{
    constexpr size_t limit = 40;
    return text.size() > limit ? text.substr(0, limit) + "..." : text;
}

std::string description(const json &value)
{
    if (value.is_object())
        return "an object";
    if (value.is_array())
        return fmt::format("a list of {}", value.size());
    return shortened(value.dump(-1, ' ', false, json::error_handler_t::replace));
}

} // namespace

json_node::json_node(std::shared_ptr<const json> document, std::string file)
    : document_(std::move(document)), value_(document_.get()), file_(std::move(file))
{}

json_node::json_node(std::shared_ptr<const json> document, const json *value, std::string file, std::string path)
    : document_(std::move(document)), value_(value), file_(std::move(file)), path_(std::move(path))
{}

json_node read_document(const std::string &file, std::string_view text)
{
    return {std::make_shared<const json>(parse_json(file, text)), file};
}

bool json_node::is_null() const
{
    return value_->is_null();
}

bool json_node::is_number() const
{
    return value_->is_number();
}

bool json_node::is_text() const
{
    return value_->is_string();
}

void json_node::fail(std::string found, std::string expected) const
{
    desk::fail({file_, path_, std::move(found), std::move(expected)});
}

void json_node::fail_type(std::string expected) const
{
    fail(description(*value_), std::move(expected));
}

void json_node::expect_names(const std::vector<std::string_view> &names) const
{
    if (!value_->is_object())
        fail_type("an object");
    for (const auto &member : value_->items()) {
        if (member.key() != "comment" && std::ranges::find(names, member.key()) == names.end())
            fail(fmt::format("the name \"{}\"", member.key()), one_of(names, member.key()));
    }
}

std::optional<json_node> json_node::find(std::string_view name) const
{
    if (!value_->is_object())
        fail_type("an object");
    const auto found = value_->find(std::string(name));
    if (found == value_->end() || found->is_null())
        return std::nullopt;
    return json_node(document_, &*found, file_, path_.empty() ? std::string(name) : fmt::format("{}.{}", path_, name));
}

json_node json_node::at(std::string_view name) const
{
    std::optional<json_node> found = find(name);
    if (!found)
        fail(fmt::format("no \"{}\"", name), "it given");
    return *std::move(found);
}

std::vector<json_node> json_node::items() const
{
    if (!value_->is_array())
        fail_type("a list");
    std::vector<json_node> nodes;
    nodes.reserve(value_->size());
    for (const json &item : *value_)
        nodes.push_back(json_node(document_, &item, file_, fmt::format("{}[{}]", path_, nodes.size())));
    return nodes;
}

std::vector<json_node> json_node::items(size_t count) const
{
    if (!value_->is_array() || value_->size() != count)
        fail_type(fmt::format("a list of {}", count));
    return items();
}

int64_t json_node::integer(int64_t low, int64_t high) const
{
    bool fits = value_->is_number_integer();
    if (value_->is_number_unsigned()) {
        fits = value_->get<uint64_t>() <= static_cast<uint64_t>(INT64_MAX);
    } else if (value_->is_number_float()) { // 1.0 or 1e2, as other programs write them
        const auto value = value_->get<double>();
        fits = std::abs(value) < 0x1p63 && value == std::trunc(value);
    }
    if (!fits || value_->get<int64_t>() < low || value_->get<int64_t>() > high)
        fail_type(fmt::format("an integer from {} to {}", low, high));
    return value_->get<int64_t>();
}

double json_node::number(double low, double high) const
{
    if (!value_->is_number() || !(value_->get<double>() >= low) || !(value_->get<double>() <= high))
        fail_type(fmt::format("a number from {} to {}", low, high));
    return value_->get<double>();
}

float json_node::single() const
{
    constexpr double limit = FLT_MAX;
    return static_cast<float>(number(-limit, limit));
}

json_node json_node::patched(const json_node &patch, const std::vector<std::string_view> &except) const
{
    if (!patch.value_->is_object())
        patch.fail_type("an object");
    json changes = *patch.value_;
    for (const std::string_view name : except)
        changes.erase(std::string(name));
    auto result = std::make_shared<json>(*value_);
    result->merge_patch(changes);
    const json *value = result.get();
    return {std::move(result), value, patch.file_, patch.path_};
}

bool json_node::boolean() const
{
    if (!value_->is_boolean())
        fail_type("true or false");
    return value_->get<bool>();
}

std::string json_node::text() const
{
    if (!value_->is_string())
        fail_type("a text");
    return value_->get<std::string>();
}

byte_buffer json_node::hex() const
{
    const std::string digits = value_->is_string() ? value_->get<std::string>() : "?";
    byte_buffer bytes(digits.size() / 2);
    bool good = digits.size() % 2 == 0;
    for (size_t i = 0; good && i < bytes.size(); ++i) {
        const char *start = digits.data() + 2 * i;
        good = std::from_chars(start, start + 2, bytes[i], 16).ptr == start + 2;
    }
    if (!good)
        fail_type("bytes as pairs of hexadecimal digits");
    return bytes;
}

byte_buffer json_node::hex(size_t size) const
{
    byte_buffer bytes = hex();
    if (bytes.size() != size)
        fail(fmt::format("{} bytes", bytes.size()), fmt::format("{} bytes as hexadecimal digits", size));
    return bytes;
}

} // namespace qz::desk
