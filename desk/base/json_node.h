// JSON documents read strictly, with errors that name the place.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/base/json.h"

namespace qz::desk {

// One value of a document together with its path, such as "frames[2].exposure.analog_gain". Every accessor
// fails when the value is not what the caller expects. A node keeps its document alive.
class json_node {
  public:
    json_node(std::shared_ptr<const json> document, std::string file);

    const std::string &path() const { return path_; }

    bool is_null() const;
    bool is_number() const;
    bool is_text() const;

    // Object members; a member that is null counts as absent. "comment" is a known name everywhere.
    void expect_names(const std::vector<std::string_view> &names) const;
    std::optional<json_node> find(std::string_view name) const;
    json_node at(std::string_view name) const;

    std::vector<json_node> items() const;
    std::vector<json_node> items(size_t count) const;

    int64_t integer(int64_t low, int64_t high) const;
    double number(double low, double high) const;
    float single() const; // any number within the range of single precision
    bool boolean() const;
    std::string text() const;
    byte_buffer hex() const;
    byte_buffer hex(size_t size) const;

    // This object with a merge patch applied to it: members of the patch replace or, where both are objects, change
    // those of the same name, and null removes them. The result has the patch's path. "except" is left out of the
    // patch.
    json_node patched(const json_node &patch, const std::vector<std::string_view> &except) const;

    [[noreturn]] void fail(std::string found, std::string expected) const;
    [[noreturn]] void fail_type(std::string expected) const;

  private:
    json_node(std::shared_ptr<const json> document, const json *value, std::string file, std::string path);

    std::shared_ptr<const json> document_;
    const json *value_;
    std::string file_;
    std::string path_;
};

// Parses a text and gives its outermost value.
json_node read_document(const std::string &file, std::string_view text);

} // namespace qz::desk
