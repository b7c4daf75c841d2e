#include "desk/json/node.h"

#include <algorithm>
#include <bit>
#include <cfloat>
#include <charconv>
#include <cmath>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/base/one_of.h"
#include "desk/json/json.h"

namespace qz::desk {

namespace {

std::string shortened(const json &value)
{
    constexpr size_t limit = 40;
    const std::string text = value.dump(-1, ' ', false, json::error_handler_t::replace);
    return text.size() > limit ? text.substr(0, limit) + "..." : text;
}

std::string description(const json_document &document, size_t index)
{
    constexpr size_t enough = 64;
    const json_value &value = document.at(index);
    switch (value.type) {
    case json_type::object: return "an object";
    case json_type::list: return fmt::format("a list of {}", value.count);
    case json_type::text: return shortened(document.text_at(index).substr(0, enough));
    case json_type::real: return shortened(std::bit_cast<double>(value.bits));
    case json_type::natural: return std::to_string(value.bits);
    case json_type::negative: return std::to_string(static_cast<int64_t>(value.bits));
    case json_type::boolean: return value.bits != 0 ? "true" : "false";
    default: return "null";
    }
}

// Looks up members by name, in objects of any size.
class member_index {
  public:
    member_index(const json_document &document, size_t object) : members_(document.members(object))
    {
        if (document.at(object).count > few) {
            for (const json_member member : members_)
                values_.emplace(member.name, member.value);
        }
    }

    // The index of the value, or 0.
    size_t find(std::string_view name) const
    {
        if (!values_.empty()) {
            const auto found = values_.find(name);
            return found == values_.end() ? 0 : found->second;
        }
        for (const json_member member : members_) {
            if (member.name == name)
                return member.value;
        }
        return 0;
    }

  private:
    static constexpr uint32_t few = 32;

    json_members members_;
    std::unordered_map<std::string_view, size_t> values_;
};

bool is_among(const std::vector<std::string_view> &names, std::string_view name)
{
    return std::ranges::find(names, name) != names.end();
}

// Adds what merge patches make of objects to a document.
class merger {
  public:
    merger(json_document &result, const json_document &base, const json_document &patch)
        : result_(result), base_(base), patch_(patch)
    {}

    void merge(std::optional<size_t> base, size_t patch, const std::vector<std::string_view> &except)
    {
        const size_t object = result_.open(json_type::object);
        const bool has_base = base && base_.at(*base).type == json_type::object;
        const uint32_t kept = has_base ? merge_base(*base, patch, except) : 0;
        const uint32_t added = merge_new(has_base ? base : std::nullopt, patch, except);
        result_.close(object, kept + added);
    }

  private:
    // The members of the base, as the patch leaves them; how many.
    uint32_t merge_base(size_t base, size_t patch, const std::vector<std::string_view> &except)
    {
        const member_index changes(patch_, patch);
        uint32_t count = 0;
        for (const json_member member : base_.members(base)) {
            const size_t change = is_among(except, member.name) ? 0 : changes.find(member.name);
            if (change != 0 && patch_.at(change).type == json_type::null)
                continue;
            result_.add_text(member.name);
            if (change == 0)
                result_.copy(base_, member.value);
            else
                add_change(member.value, change);
            ++count;
        }
        return count;
    }

    // The members that the patch alone has; how many.
    uint32_t merge_new(std::optional<size_t> base, size_t patch, const std::vector<std::string_view> &except)
    {
        std::optional<member_index> there;
        if (base)
            there.emplace(base_, *base);
        uint32_t count = 0;
        for (const json_member member : patch_.members(patch)) {
            if (patch_.at(member.value).type == json_type::null || is_among(except, member.name) ||
                (there && there->find(member.name) != 0))
                continue;
            result_.add_text(member.name);
            add_change(std::nullopt, member.value);
            ++count;
        }
        return count;
    }

    void add_change(std::optional<size_t> base, size_t change)
    {
        if (patch_.at(change).type == json_type::object)
            merge(base, change, {});
        else
            result_.copy(patch_, change);
    }

    json_document &result_;
    const json_document &base_;
    const json_document &patch_;
};

} // namespace

bool json_node::is_number() const
{
    return value().type == json_type::natural || value().type == json_type::negative || value().type == json_type::real;
}

void json_node::fail(std::string found, std::string expected) const
{
    desk::fail({document_->file(), document_->path_of(index_), std::move(found), std::move(expected)});
}

void json_node::fail_type(std::string expected) const
{
    fail(description(*document_, index_), std::move(expected));
}

void json_node::expect_object() const
{
    if (value().type != json_type::object)
        fail_type("an object");
}

void json_node::expect_names(const std::vector<std::string_view> &names) const
{
    expect_object();
    for (const json_member member : document_->members(index_)) {
        if (member.name != "comment" && !is_among(names, member.name))
            fail(fmt::format("the name \"{}\"", member.name), one_of(names, member.name));
    }
}

std::optional<json_node> json_node::find(std::string_view name) const
{
    expect_object();
    for (const json_member member : document_->members(index_)) {
        if (member.name != name)
            continue;
        const json_node found(*document_, member.value);
        return found.is_null() ? std::nullopt : std::optional(found);
    }
    return std::nullopt;
}

json_node json_node::at(std::string_view name) const
{
    const std::optional<json_node> found = find(name);
    if (!found)
        fail(fmt::format("no \"{}\"", name), "it given");
    return *found;
}

json_items json_node::items() const
{
    if (value().type != json_type::list)
        fail_type("a list");
    return json_items(*this);
}

json_items json_node::items(size_t count) const
{
    if (value().type != json_type::list || value().count != count)
        fail_type(fmt::format("a list of {}", count));
    return json_items(*this);
}

double json_node::real() const
{
    switch (value().type) {
    case json_type::natural: return static_cast<double>(value().bits);
    case json_type::negative: return static_cast<double>(static_cast<int64_t>(value().bits));
    default: return std::bit_cast<double>(value().bits);
    }
}

int64_t json_node::integer(int64_t low, int64_t high) const
{
    bool fits = value().type == json_type::negative;
    auto number = static_cast<int64_t>(value().bits);
    if (value().type == json_type::natural) {
        fits = number >= 0;
    } else if (value().type == json_type::real) { // 1.0 or 1e2, as other programs write them
        fits = std::abs(real()) < 0x1p63 && real() == std::trunc(real());
        number = fits ? static_cast<int64_t>(real()) : 0;
    }
    if (!fits || number < low || number > high)
        fail_type(fmt::format("an integer from {} to {}", low, high));
    return number;
}

double json_node::number(double low, double high) const
{
    if (!is_number() || !(real() >= low) || !(real() <= high))
        fail_type(fmt::format("a number from {} to {}", low, high));
    return real();
}

float json_node::single() const
{
    constexpr double limit = FLT_MAX;
    return static_cast<float>(number(-limit, limit));
}

json_document json_node::patch(const std::optional<json_node> &base, const std::vector<std::string_view> &except) const
{
    expect_object();
    json_document result(*document_, index_);
    merger(result, base ? *base->document_ : *document_, *document_)
        .merge(base ? std::optional(base->index_) : std::nullopt, index_, except);
    return result;
}

bool json_node::boolean() const
{
    if (value().type != json_type::boolean)
        fail_type("true or false");
    return value().bits != 0;
}

std::string_view json_node::text() const
{
    if (!is_text())
        fail_type("a text");
    return document_->text_at(index_);
}

byte_buffer json_node::hex() const
{
    const std::string_view digits = is_text() ? text() : "?";
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
