// The walk over a tuning container's records.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_mkn.h"
#include "tuning/bytes.h"
#include "tuning/slots.h"
#include "tuning/store_record.h"

namespace qz {
namespace {

constexpr char tag[4] = {'V', 'U', 'X', 'B'};
constexpr uint32_t record_header_size = 8;
constexpr uint32_t rule_record_id = 709;
constexpr uint32_t set_container_base = 64512; // id less base = set index

// Records back to back; a rest of up to a record header's size is ignored.
struct record_list {
    const uint8_t *bytes;
    uint32_t length;

    bool done() const { return length <= record_header_size; }
};

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

// Makes room for set indices below count; the sets there are keep their records.
bool grow_sets(isp_context &context, int32_t count)
{
    const auto sets = static_cast<size_t>(count);
    auto *block = static_cast<isp_tuning_set *>(std::calloc(3 * sets, sizeof(isp_tuning_set)));
    if (block == nullptr)
        return false;
    isp_tuning_set *old_block = context.tuning_sets[0];
    for (size_t i = 0; i < 3; ++i) {
        isp_tuning_set *grown = block + i * sets;
        if (context.set_count > 0)
            std::copy_n(context.tuning_sets[i], context.set_count, grown);
        context.tuning_sets[i] = grown;
    }
    std::free(old_block);
    context.set_count = count;
    return true;
}

// Finds the records inside a set container; false when it is tagged but too short for the header that the tag opens.
bool nested_list(const uint8_t *record, uint32_t size, record_list &list)
{
    constexpr uint32_t tagged_start = record_header_size + QZ_MKN_HEADER_SIZE;
    const bool tagged =
        size >= record_header_size + sizeof tag && std::memcmp(record + record_header_size, tag, sizeof tag) == 0;
    if (tagged && size < tagged_start)
        return false;
    const uint32_t start = tagged ? tagged_start : record_header_size;
    list = {record + start, size - start};
    return true;
}

void refer_to_rules(isp_rule_ref &rules, const uint8_t *record, uint32_t size)
{
    constexpr uint32_t rules_start = 16;
    constexpr uint64_t rule_size = 16;
    if (size < rules_start)
        return;
    const auto count = read_at<uint32_t>(record, 12);
    rules.record = record;
    rules.first_rule = count * rule_size + rules_start <= size ? record + rules_start : nullptr;
}

// Where a record of a family goes.
struct family_place {
    record_family family;
    uint32_t set;    // 0 to 2
    uint32_t offset; // id less the base of its group
};

bool find_family(uint32_t id, family_place &place)
{
    struct family_base {
        uint32_t base;
        record_family family;
    };
    constexpr family_base families[] = {
        {320, record_family::f320}, {768, record_family::f768}, {1536, record_family::f1536}};
    constexpr uint32_t group_size = 64;
    constexpr uint32_t set_of_group[] = {0, 2, 1};
    for (const auto &candidate : families) {
        const uint32_t distance = id - candidate.base;
        if (id >= candidate.base && distance < std::size(set_of_group) * group_size) {
            place = {candidate.family, set_of_group[distance / group_size], distance % group_size};
            return true;
        }
    }
    return false;
}

uint32_t enter_set_container(walk_stack &stack, isp_context &context, const uint8_t *record, uint32_t size,
                             int32_t set_index)
{
    if (set_index >= context.set_count && !grow_sets(context, set_index + 1))
        return ISP_OUT_OF_MEMORY;
    record_list nested = {};
    if (!nested_list(record, size, nested))
        return ISP_INVALID_DATA;
    if (stack.top().rest.done())
        stack.pop();
    return stack.push({nested, set_index}) ? ISP_SUCCESS : ISP_OUT_OF_MEMORY;
}

uint32_t file_record(walk_stack &stack, isp_context &context, const uint8_t *record, uint32_t size, int32_t set_index)
{
    const uint32_t id = read_at<uint16_t>(record, 6);
    family_place place = {};
    if (find_family(id, place))
        return store_record(record, size, kind_of(place.family, place.offset),
                            context.tuning_sets[place.set][set_index]);
    if (id == rule_record_id)
        refer_to_rules(context.rules, record, size);
    else if (id > set_container_base)
        return enter_set_container(stack, context, record, size, static_cast<int32_t>(id - set_container_base));
    return ISP_SUCCESS;
}

uint32_t parse_records(record_list list, isp_context &context)
{
    walk_stack stack;
    stack.push({list, 0});
    while (!stack.empty()) {
        walk_level &level = stack.top();
        if (level.rest.done()) {
            stack.pop();
            continue;
        }
        const uint8_t *record = level.rest.bytes;
        const auto size = read_at<uint32_t>(record, 0);
        if (size < record_header_size || size > level.rest.length)
            return ISP_INVALID_DATA;
        level.rest = {record + size, level.rest.length - size};
        const uint32_t status = file_record(stack, context, record, size, level.set_index);
        if (status != ISP_SUCCESS)
            return status;
    }
    return ISP_SUCCESS;
}

void free_records(isp_tuning_set &set)
{
    for (const slot_group group : slot_groups)
        std::free(record_in(set, group.first));
    set = {};
}

} // namespace
} // namespace qz

uint32_t isp_parse(const isp_blob *container, isp_context *context)
{
    uint32_t tag_value = 0;
    std::memcpy(&tag_value, qz::tag, sizeof tag_value);
    // The size comes first: what a device's library takes for a header may be shorter.
    if (context == nullptr || container == nullptr || container->size < QZ_MKN_HEADER_SIZE ||
        !qz_mkn_is_valid(container, tag_value))
        return ISP_INVALID_ARGUMENT;
    isp_parse_deinit(context);
    if (!qz::grow_sets(*context, 1))
        return ISP_OUT_OF_MEMORY;

    const auto *bytes = static_cast<const uint8_t *>(container->data);
    const uint32_t status =
        qz::parse_records({bytes + QZ_MKN_HEADER_SIZE, container->size - QZ_MKN_HEADER_SIZE}, *context);
    if (status != ISP_SUCCESS)
        isp_parse_deinit(context);
    return status;
}

void isp_parse_deinit(isp_context *context)
{
    if (context == nullptr)
        return;
    for (auto &sets : context->tuning_sets)
        for (int32_t i = 0; i < context->set_count; ++i)
            qz::free_records(sets[i]);
    std::free(context->tuning_sets[0]);
    std::fill(std::begin(context->tuning_sets), std::end(context->tuning_sets), nullptr);
    context->set_count = 0;
}
