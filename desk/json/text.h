// JSON values as text that a person can read.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "desk/json/json.h"

namespace qz::desk {

// Objects and lists over several lines, lists of numbers filled into lines, short lists of numbers side by side.
std::string json_text(const json &value);

// Takes text piece by piece.
using text_sink = std::function<void(std::string_view)>;

// The same text of objects that hold lists of objects too long to be made at once.
class json_writer {
  public:
    explicit json_writer(text_sink sink) : sink_(std::move(sink)) {}

    void write(const json &value);

    // An object of the members of "head", a list of at least one object, and the members of "tail": each object of the
    // list is written, or opened and closed, after begin_item().
    void open(const json &head, std::string_view list);
    void begin_item();
    void close(const json &tail);

    void finish(); // ends the text

  private:
    struct open_list {
        size_t indent; // of the object around it
        bool has_items;
    };

    void new_line(size_t indent);
    void print(const json &value, size_t indent, size_t column);
    void print_members(const json &value, size_t indent, bool first);
    void print_list(const json &value, size_t indent);
    void print_filled(const json &value, size_t indent);
    void flush();
    size_t indent() const;

    text_sink sink_;
    std::string text_; // what the sink has not got yet
    std::vector<open_list> open_;
};

} // namespace qz::desk
