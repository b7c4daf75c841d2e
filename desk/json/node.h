// JSON documents read strictly, with errors that name the place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/json/document.h"

namespace qz::desk {

class json_items;

// One value of a document, which knows its path, such as "frames[2].exposure.analog_gain". Every accessor fails when
// the value is not what the caller expects. The document has to outlive its nodes.
class json_node {
  public:
    explicit json_node(const json_document &document, size_t index = 0) : document_(&document), index_(index) {}
    explicit json_node(json_document &&document, size_t index = 0) = delete;

    bool is_null() const { return value().type == json_type::null; }
    bool is_number() const;
    bool is_text() const { return value().type == json_type::text; }

    // Object members; a member that is null counts as absent. "comment" is a known name everywhere.
    void expect_names(const std::vector<std::string_view> &names) const;
    std::optional<json_node> find(std::string_view name) const;
    json_node at(std::string_view name) const;

    json_items items() const;
    json_items items(size_t count) const;

    int64_t integer(int64_t low, int64_t high) const;
    double number(double low, double high) const;
    float single() const; // any number within the range of single precision
    bool boolean() const;
    std::string_view text() const;
    byte_buffer hex() const;
    byte_buffer hex(size_t size) const;

    // The object "base", or an empty one, with this merge patch applied to it: members of the patch replace or, where
    // both are objects, change those of the same name, and null removes them. The result has the patch's path.
    // "except" is left out of the patch.
    json_document patch(const std::optional<json_node> &base, const std::vector<std::string_view> &except) const;

    [[noreturn]] void fail(std::string found, std::string expected) const;
    [[noreturn]] void fail_type(std::string expected) const;

  private:
    friend class json_items;

    const json_value &value() const { return document_->at(index_); }
    void expect_object() const;
    double real() const; // of a number

    const json_document *document_;
    size_t index_;
};

// The items of a list.
class json_items {
  public:
    class iterator {
      public:
        using value_type = json_node;
        using difference_type = std::ptrdiff_t;

        iterator() = default;
        iterator(const json_document &document, size_t index) : document_(&document), index_(index) {}
        json_node operator*() const { return json_node(*document_, index_); }
        iterator &operator++()
        {
            index_ = document_->behind(index_);
            return *this;
        }
        iterator operator++(int)
        {
            const iterator before = *this;
            ++*this;
            return before;
        }
        bool operator==(const iterator &other) const { return index_ == other.index_; }

      private:
        const json_document *document_ = nullptr;
        size_t index_ = 0;
    };

    explicit json_items(const json_node &list) : list_(list) {}

    size_t size() const { return list_.value().count; }
    iterator begin() const { return {*list_.document_, list_.index_ + 1}; }
    iterator end() const { return {*list_.document_, list_.document_->behind(list_.index_)}; }

  private:
    json_node list_;
};

} // namespace qz::desk
