// A tuning container taken apart: its records, what is wrong with them, and their bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>
#include <string>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/tuning/layout.h"

namespace qz::desk {

// Set containers nested deeper than this are kept as bytes.
constexpr unsigned max_nesting = 64;

struct tuning_record;

// Goes from record to record in a file's bytes, and takes each apart when it is asked for.
class record_iterator {
  public:
    using value_type = tuning_record;
    using difference_type = std::ptrdiff_t;

    record_iterator() = default;
    record_iterator(byte_view rest, size_t offset, unsigned depth) : rest_(rest), offset_(offset), depth_(depth) {}

    tuning_record operator*() const;
    record_iterator &operator++();
    void operator++(int) { ++*this; }
    bool operator==(std::default_sentinel_t) const;

    byte_view rest() const { return rest_; } // of the list, from the record on
    size_t offset() const { return offset_; }

  private:
    byte_view rest_;
    size_t offset_ = 0;
    unsigned depth_ = 0; // set containers around the list
};

// Records one behind the other. There may be millions: the list is where they lie, no copy.
class record_list {
  public:
    record_list() = default;
    record_list(byte_view bytes, size_t offset, unsigned depth) : begin_(bytes, offset, depth) {}

    record_iterator begin() const { return begin_; }
    static std::default_sentinel_t end() { return {}; }
    bool empty() const { return begin_ == end(); }

    // What the walk leaves unread: up to 8 bytes, or all from a record of bad size on.
    byte_view trailing() const;

  private:
    record_iterator begin_;
};

struct tuning_record {
    size_t offset; // in the file
    uint8_t version;
    uint8_t unread;
    uint16_t id;
    byte_view body; // behind the record header
    std::optional<record_place> place;

    // Set containers only.
    bool is_set_container;
    bool tagged;      // a container header precedes the nested records
    byte_view header; // that header behind its tag
    record_list nested;

    size_t size() const { return body.size() + record_header_size; }
};

// Why the library refuses the container (error), or what it silently does about an odd record.
struct tuning_problem {
    bool error;
    size_t offset;
    std::optional<uint16_t> id; // none: the container as a whole
    std::string text;
};

struct tuning_container {
    byte_view header; // behind the tag
    record_list list;
    std::vector<tuning_problem> problems; // in file order

    bool has_errors() const;
};

// Fails for bytes that are no container at all.
void expect_container(const std::string &file, byte_view bytes);

// A container whose problems nobody asks for. The views point into the bytes.
tuning_container container_of(byte_view bytes);

// Both, and the problems.
tuning_container read_container(const std::string &file, byte_view bytes);

// "offset 72, id 339: found ..., expected ..."
std::string problem_text(const tuning_problem &problem);

// The number of rows or rules that a record states; nothing for records without rows or too short to state a number.
std::optional<int64_t> stated_rows(const tuning_record &record);

} // namespace qz::desk
