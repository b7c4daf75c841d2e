// JSON documents as flat lists of their values: a few bytes for each, whatever the shape.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>

namespace qz::desk {

enum class json_type : uint8_t { null, boolean, natural, negative, real, text, list, object };

struct json_value {
    json_type type;
    uint32_t count; // items, members, or bytes of a text
    uint64_t bits;  // of a number, the first byte of a text, or the index behind all that is in a list or an object
};

struct json_member {
    std::string_view name;
    size_t value; // its index
};

class json_members;

// Values in the order of the text, each list and object before what is in it, each member's name before its value.
class json_document {
  public:
    explicit json_document(std::string file) : file_(std::move(file)) {}
    // Whose outermost value is called what a value of another document is, which must outlive this one.
    json_document(const json_document &origin, size_t index)
        : file_(origin.file_), origin_(&origin), origin_index_(index)
    {}

    const std::string &file() const { return file_; }

    size_t size() const { return values_.size(); }
    const json_value &at(size_t index) const { return values_[index]; }
    std::string_view text_at(size_t index) const
    {
        return std::string_view(texts_).substr(static_cast<size_t>(at(index).bits), at(index).count);
    }
    bool is_structured(size_t index) const { return at(index).type >= json_type::list; }
    // The index behind a value and all that is in it.
    size_t behind(size_t index) const { return is_structured(index) ? static_cast<size_t>(at(index).bits) : index + 1; }

    json_members members(size_t object) const;

    // "frames[2].exposure.analog_gain"
    std::string path_of(size_t index) const;

    void add(json_type type, uint64_t bits) { values_.push_back({type, 0, bits}); }
    void add_text(std::string_view text);
    // What is added until it is closed is in it.
    size_t open(json_type type);
    void close(size_t index, uint32_t count);
    // A value of another document with all that is in it.
    void copy(const json_document &from, size_t index);

  private:
    std::string file_;
    const json_document *origin_ = nullptr;
    size_t origin_index_ = 0;
    std::deque<json_value> values_; // grows without being copied
    std::string texts_;
};

// The members of an object.
class json_members {
  public:
    class iterator {
      public:
        using value_type = json_member;
        using difference_type = std::ptrdiff_t;

        iterator(const json_document &document, size_t name) : document_(&document), name_(name) {}
        json_member operator*() const { return {document_->text_at(name_), name_ + 1}; }
        iterator &operator++()
        {
            name_ = document_->behind(name_ + 1);
            return *this;
        }
        bool operator==(const iterator &other) const { return name_ == other.name_; }

      private:
        const json_document *document_;
        size_t name_;
    };

    json_members(const json_document &document, size_t object) : document_(document), object_(object) {}

    iterator begin() const { return {document_, object_ + 1}; }
    iterator end() const { return {document_, document_.behind(object_)}; }

  private:
    const json_document &document_;
    size_t object_;
};

inline json_members json_document::members(size_t object) const
{
    return {*this, object};
}

// Fails with line and column for text that is no JSON, and with the path of an object that has a name twice or of
// values nested too deep.
json_document parse_json(const std::string &file, std::string_view text);

} // namespace qz::desk
