#include "desk/json/document.h"

#include <algorithm>
#include <bit>
#include <nlohmann/json.hpp>
#include <vector>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/json/json.h"

namespace qz::desk {

namespace {

// Merging objects costs stack for every level.
constexpr size_t max_depth = 256;

std::string line_and_column(std::string_view text, size_t offset)
{
    const std::string_view before = text.substr(0, std::min(offset, text.size()));
    const size_t line = 1 + static_cast<size_t>(std::ranges::count(before, '\n'));
    const size_t start = before.rfind('\n') + 1; // npos + 1 is 0
    return fmt::format("line {}, column {}", line, before.size() - start + 1);
}

// The last part of the parser's message, which names what it met and what it needed.
std::string syntax_message(const std::string &message)
{
    const size_t start = message.find("syntax error");
    return start == std::string::npos ? message : message.substr(start);
}

// Builds a document from the parser's events, in which every object has a name once.
class document_builder final : public nlohmann::json_sax<json> {
  public:
    document_builder(const std::string &file, std::string_view text) : document_(file), text_(text) {}

    bool null() override { return add(json_type::null, 0); }
    bool boolean(bool value) override { return add(json_type::boolean, value ? 1 : 0); }
    bool number_integer(number_integer_t value) override
    {
        return add(json_type::negative, static_cast<uint64_t>(value));
    }
    bool number_unsigned(number_unsigned_t value) override { return add(json_type::natural, value); }
    bool number_float(number_float_t value, const string_t &) override
    {
        return add(json_type::real, std::bit_cast<uint64_t>(value));
    }
    bool string(string_t &value) override
    {
        count_value();
        document_.add_text(value);
        return true;
    }
    bool binary(binary_t &) override { return false; } // text has none
    bool start_object(size_t) override { return open(json_type::object); }
    bool start_array(size_t) override { return open(json_type::list); }
    bool end_array() override { return close(); }

    bool end_object() override
    {
        close();
        expect_distinct_names();
        return true;
    }

    bool key(string_t &name) override
    {
        open_.back().name = document_.size();
        document_.add_text(name);
        return true;
    }

    bool parse_error(size_t position, const std::string &token, const json::exception &error) override
    {
        const std::string place = line_and_column(text_, position > 0 ? position - 1 : 0);
        if (error.id == number_overflow)
            fail({document_.file(), place, token, "a number within double precision"});
        fail({document_.file(), place, syntax_message(error.what()), ""});
    }

    json_document take() { return std::move(document_); }

  private:
    static constexpr int number_overflow = 406; // of the parser's errors
    // Names of smaller objects are compared each with each.
    static constexpr size_t few_names = 16;

    // An object or list that has not ended.
    struct level {
        size_t index;
        uint32_t count;
        size_t name; // of its last member
    };

    void count_value()
    {
        if (!open_.empty())
            ++open_.back().count;
        if (open_.size() > max_depth)
            fail({document_.file(), shortened_path(), fmt::format("values nested more than {} deep", max_depth),
                  "fewer levels"});
    }

    bool add(json_type type, uint64_t bits)
    {
        count_value();
        document_.add(type, bits);
        return true;
    }

    bool open(json_type type)
    {
        count_value();
        open_.push_back({document_.open(type), 0, 0});
        return true;
    }

    bool close()
    {
        closed_ = open_.back().index;
        document_.close(closed_, open_.back().count);
        open_.pop_back();
        return true;
    }

    // Of the object that was closed last.
    void expect_distinct_names()
    {
        const uint32_t count = document_.at(closed_).count;
        names_.clear();
        for (const json_member member : document_.members(closed_)) {
            if (count <= few_names && std::ranges::find(names_, member.name) != names_.end())
                fail_twice(member.name);
            names_.push_back(member.name);
        }
        if (count <= few_names)
            return;
        std::ranges::sort(names_);
        if (const auto twice = std::ranges::adjacent_find(names_); twice != names_.end())
            fail_twice(*twice);
    }

    [[noreturn]] void fail_twice(std::string_view name) const
    {
        fail({document_.file(), path(), fmt::format("the name {} twice in one object", json(name).dump()), "it once"});
    }

    // Of the value that was added last to what is open.
    std::string path() const
    {
        std::string path;
        for (const level &each : open_) {
            if (document_.at(each.index).type == json_type::list)
                path += fmt::format("[{}]", each.count - 1);
            else
                path += fmt::format("{}{}", path.empty() ? "" : ".", document_.text_at(each.name));
        }
        return path;
    }

    std::string shortened_path() const
    {
        constexpr size_t limit = 60;
        const std::string whole = path();
        return whole.size() > limit ? whole.substr(0, limit) + "..." : whole;
    }

    json_document document_;
    std::string_view text_;
    std::vector<level> open_;
    size_t closed_ = 0;
    std::vector<std::string_view> names_;
};

} // namespace

void json_document::add_text(std::string_view text)
{
    if (text.size() > UINT32_MAX)
        fail({file_, "", fmt::format("a text of {} bytes", text.size()), "at most 4294967295"});
    values_.push_back({json_type::text, static_cast<uint32_t>(text.size()), texts_.size()});
    texts_ += text;
}

size_t json_document::open(json_type type)
{
    values_.push_back({type, 0, 0});
    return values_.size() - 1;
}

void json_document::close(size_t index, uint32_t count)
{
    values_[index].count = count;
    values_[index].bits = values_.size();
}

void json_document::copy(const json_document &from, size_t index)
{
    const uint64_t moved = uint64_t{size()} - index; // wraps
    for (size_t i = index; i < from.behind(index); ++i) {
        if (from.at(i).type == json_type::text) {
            add_text(from.text_at(i));
        } else {
            values_.push_back(from.at(i));
            if (from.is_structured(i))
                values_.back().bits += moved;
        }
    }
}

std::string json_document::path_of(size_t index) const
{
    std::string path = origin_ != nullptr ? origin_->path_of(origin_index_) : "";
    size_t inside = 0;
    while (inside != index) {
        const bool is_list = at(inside).type == json_type::list;
        size_t number = 0;
        size_t item = inside + (is_list ? 1 : 2);
        while (behind(item) <= index) {
            item = behind(item) + (is_list ? 0 : 1);
            ++number;
        }
        if (is_list)
            path += fmt::format("[{}]", number);
        else
            path += fmt::format("{}{}", path.empty() ? "" : ".", text_at(item - 1));
        inside = item;
    }
    return path;
}

json_document parse_json(const std::string &file, std::string_view text)
{
    document_builder builder(file, text);
    json::sax_parse(text, &builder);
    // The parser takes it for the end.
    if (const size_t zero = text.find('\0'); zero != std::string_view::npos)
        fail({file, line_and_column(text, zero), "a byte 0", "text"});
    return builder.take();
}

} // namespace qz::desk
