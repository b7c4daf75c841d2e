// The walk over a tuning container's records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "qz_isp/error.h"
#include "qz_isp/tuning_layout.h"
#include "qz_mkn.h"
#include "tuning/record_view.h"

namespace qz {

// Records back to back; a rest of up to a record header's size is ignored.
struct record_list {
    const uint8_t *bytes;
    uint32_t length;

    bool done() const { return length <= ISP_RECORD_HEADER_SIZE; }
};

// Whether a record of a size can stand at a list's beginning.
constexpr bool holds_record(const record_list &list, uint32_t size)
{
    return size >= ISP_RECORD_HEADER_SIZE && size <= list.length;
}

// A record list being walked and the set index that its records belong to.
struct walk_level {
    record_list rest;
    int32_t set_index;
};

// The lists that enclose the one being walked. Ordinary containers stay within the first few; deeper ones go to the
// heap, so that nesting costs no stack.
class walk_stack {
  public:
    walk_stack() = default;
    walk_stack(const walk_stack &) = delete;
    walk_stack &operator=(const walk_stack &) = delete;
    ~walk_stack()
    {
        if (levels_ != few_)
            std::free(levels_);
    }

    bool empty() const { return size_ == 0; }
    walk_level &top() { return levels_[size_ - 1]; }
    void pop() { --size_; }

    // False when memory runs out.
    bool push(walk_level level)
    {
        if (size_ == capacity_ && !grow())
            return false;
        levels_[size_++] = level;
        return true;
    }

  private:
    bool grow()
    {
        // Cannot wrap: the container, in memory itself, spends a record header on every level.
        auto *grown = static_cast<walk_level *>(std::malloc(2 * capacity_ * sizeof(walk_level)));
        if (grown == nullptr)
            return false;
        std::copy_n(levels_, size_, grown);
        if (levels_ != few_)
            std::free(levels_);
        levels_ = grown;
        capacity_ *= 2;
        return true;
    }

    static constexpr size_t few = 16;
    walk_level few_[few] = {};
    walk_level *levels_ = few_;
    size_t size_ = 0;
    size_t capacity_ = few;
};

// Finds the records inside a set container; false when it is tagged but too short for the header that the tag opens.
inline bool nested_list(const uint8_t *record, uint32_t size, record_list &list)
{
    constexpr uint32_t tagged_start = ISP_RECORD_HEADER_SIZE + QZ_MKN_HEADER_SIZE;
    const bool tagged = size >= ISP_RECORD_HEADER_SIZE + sizeof(uint32_t) &&
                        value_at<uint32_t>(record, ISP_RECORD_HEADER_SIZE) == ISP_CONTAINER_TAG;
    if (tagged && size < tagged_start)
        return false;
    const uint32_t start = tagged ? tagged_start : ISP_RECORD_HEADER_SIZE;
    list = {record + start, size - start};
    return true;
}

// A record that the walk has come to; its size is at least that of its header, and within its list.
struct walked_record {
    const uint8_t *bytes;
    uint32_t size;
    uint32_t behind; // bytes of its list behind it
    uint16_t id;
    int32_t set_index;

    bool is_set_container() const { return id > ISP_SET_CONTAINER_BASE; }
    // Of its own records.
    int32_t nested_index() const { return id - static_cast<int32_t>(ISP_SET_CONTAINER_BASE); }
};

// Whether a rule record takes the place of an earlier one: others are ignored.
inline bool replaces_rules(const walked_record &record)
{
    return record.size >= ISP_RULES_START;
}

// False when a rule record states more rules than it holds: then none is used.
inline bool holds_its_rules(const walked_record &record)
{
    const uint64_t count = value_at<uint32_t>(record.bytes, ISP_RULE_COUNT_AT);
    return count * sizeof(isp_selection_rule) + ISP_RULES_START <= record.size;
}

// Malformed bytes end the walk.
constexpr auto refuse_malformed = [](const uint8_t *, uint32_t) -> uint32_t { return ISP_INVALID_DATA; };

// Calls visit, which returns a status, with every record in the order of the bytes, set containers before the records
// inside; and malformed with the place of a record that its list does not hold, and the bytes left there, or with a set
// container, already visited, and its size, whose records cannot be found. Ends with the first status that is not
// success; where malformed gives success, what it was called with is left out.
template <typename Visit, typename Malformed>
uint32_t walk(record_list list, const Visit &visit, const Malformed &malformed)
{
    walk_stack stack;
    stack.push({list, 0});
    while (!stack.empty()) {
        auto &[rest, set_index] = stack.top();
        if (rest.done()) {
            stack.pop();
            continue;
        }
        const auto size = value_at<uint32_t>(rest.bytes, offsetof(isp_record, size));
        if (!holds_record(rest, size)) {
            const uint32_t status = malformed(rest.bytes, rest.length);
            if (status != ISP_SUCCESS)
                return status;
            stack.pop();
            continue;
        }
        const walked_record record = {rest.bytes, size, rest.length - size,
                                      value_at<uint16_t>(rest.bytes, offsetof(isp_record, id)), set_index};
        rest = {rest.bytes + size, record.behind};
        uint32_t status = visit(record);
        if (status != ISP_SUCCESS)
            return status;
        if (!record.is_set_container())
            continue;
        record_list nested = {};
        if (!nested_list(record.bytes, record.size, nested)) {
            status = malformed(record.bytes, record.size);
            if (status != ISP_SUCCESS)
                return status;
            continue;
        }
        if (rest.done())
            stack.pop();
        if (!stack.push({nested, record.nested_index()}))
            return ISP_OUT_OF_MEMORY;
    }
    return ISP_SUCCESS;
}

} // namespace qz
