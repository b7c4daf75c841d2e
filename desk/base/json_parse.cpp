#include "desk/base/json_parse.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "desk/base/error.h"

namespace qz::desk {

namespace {

// Copying and merging values costs stack for every level.
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

// Builds a document's values from the parser's events, in which every object has a name once.
class document_builder final : public nlohmann::json_sax<json> {
  public:
    document_builder(const std::string &file, std::string_view text) : file_(file), text_(text) {}

    bool null() override { return add(nullptr) != nullptr; }
    bool boolean(bool value) override { return add(value) != nullptr; }
    bool number_integer(number_integer_t value) override { return add(value) != nullptr; }
    bool number_unsigned(number_unsigned_t value) override { return add(value) != nullptr; }
    bool number_float(number_float_t value, const string_t &) override { return add(value) != nullptr; }
    bool string(string_t &value) override { return add(std::move(value)) != nullptr; }
    bool binary(binary_t &) override { return false; } // text has none
    bool start_object(size_t) override { return open(json::object()); }
    bool start_array(size_t) override { return open(json::array()); }
    bool end_object() override { return close(); }
    bool end_array() override { return close(); }

    bool key(string_t &name) override
    {
        if (open_.back().value->contains(name))
            fail({file_, path(), fmt::format("the name {} twice in one object", json(name).dump()), "it once"});
        open_.back().name = std::move(name);
        return true;
    }

    bool parse_error(size_t position, const std::string &token, const json::exception &error) override
    {
        const std::string place = line_and_column(text_, position > 0 ? position - 1 : 0);
        if (error.id == number_overflow)
            fail({file_, place, token, "a number within double precision"});
        fail({file_, place, syntax_message(error.what()), ""});
    }

    json take() { return std::move(root_); }

  private:
    static constexpr int number_overflow = 406; // of the parser's errors

    // An object or list that has not ended, and the name of its last member.
    struct level {
        json *value;
        std::string name;
    };

    json *add(json value)
    {
        if (open_.empty())
            return &(root_ = std::move(value));
        if (open_.size() > max_depth)
            fail({file_, "", fmt::format("values nested more than {} deep", max_depth), "fewer levels"});
        json &parent = *open_.back().value;
        if (parent.is_array())
            return &parent.emplace_back(std::move(value));
        return &(parent[open_.back().name] = std::move(value));
    }

    bool open(json value)
    {
        json *const added = add(std::move(value));
        open_.push_back({added, ""});
        return true;
    }

    bool close()
    {
        open_.pop_back();
        return true;
    }

    // Of the value that is open.
    std::string path() const
    {
        std::string path;
        for (size_t i = 0; i + 1 < open_.size(); ++i) {
            if (open_[i].value->is_array())
                path += fmt::format("[{}]", open_[i].value->size() - 1);
            else
                path += (path.empty() ? "" : ".") + open_[i].name;
        }
        return path;
    }

    const std::string &file_;
    std::string_view text_;
    json root_;
    std::vector<level> open_;
};

} // namespace

json parse_json(const std::string &file, std::string_view text)
{
    document_builder builder(file, text);
    json::sax_parse(text, &builder);
    // The parser takes it for the end.
    if (const size_t zero = text.find('\0'); zero != std::string_view::npos)
        fail({file, line_and_column(text, zero), "a byte 0", "text"});
    return builder.take();
}

} // namespace qz::desk
