// The walk over a tuning container's records.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_mkn.h"
#include "tuning/record_view.h"
#include "tuning/slots.h"
#include "tuning/store_record.h"

namespace qz {
namespace {

// Records back to back; a rest of up to a record header's size is ignored.
struct record_list {
    const uint8_t *bytes;
    uint32_t length;

    bool done() const { return length <= ISP_RECORD_HEADER_SIZE; }
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

// Finds the records inside a set container; false when it is tagged but too short for the header that the tag opens.
bool nested_list(const uint8_t *record, uint32_t size, record_list &list)
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
    uint16_t id;
    int32_t set_index;

    bool is_set_container() const { return id > ISP_SET_CONTAINER_BASE; }
    // Of its own records.
    int32_t nested_index() const { return id - static_cast<int32_t>(ISP_SET_CONTAINER_BASE); }
};

// Calls visit, which returns a status, with every record in the order of the bytes, set containers before the records
// inside. Ends with the first status that is not success.
template <typename Visit>
uint32_t walk(record_list list, const Visit &visit)
{
    walk_stack stack;
    stack.push({list, 0});
    while (!stack.empty()) {
        auto &[rest, set_index] = stack.top();
        if (rest.done()) {
            stack.pop();
            continue;
        }
        const walked_record record = {rest.bytes, value_at<uint32_t>(rest.bytes, offsetof(isp_record, size)),
                                      value_at<uint16_t>(rest.bytes, offsetof(isp_record, id)), set_index};
        if (record.size < ISP_RECORD_HEADER_SIZE || record.size > rest.length)
            return ISP_INVALID_DATA;
        rest = {rest.bytes + record.size, rest.length - record.size};
        const uint32_t status = visit(record);
        if (status != ISP_SUCCESS)
            return status;
        if (!record.is_set_container())
            continue;
        record_list nested = {};
        if (!nested_list(record.bytes, record.size, nested))
            return ISP_INVALID_DATA;
        if (rest.done())
            stack.pop();
        if (!stack.push({nested, record.nested_index()}))
            return ISP_OUT_OF_MEMORY;
    }
    return ISP_SUCCESS;
}

// Finds all that is wrong with a container before anything is made of it, and how many set indices it has.
uint32_t check_records(record_list list, int32_t &set_count)
{
    set_count = 1;
    return walk(list, [&](const walked_record &record) -> uint32_t {
        if (record.is_set_container())
            set_count = std::max(set_count, record.nested_index() + 1);
        const std::optional<record_place> place = place_of(record.id);
        return place && place->refused ? ISP_INVALID_DATA : ISP_SUCCESS;
    });
}

bool allocate_sets(isp_context &context, int32_t set_count)
{
    const auto sets = static_cast<size_t>(set_count);
    auto *block = static_cast<isp_tuning_set *>(std::calloc(3 * sets, sizeof(isp_tuning_set)));
    if (block == nullptr)
        return false;
    for (isp_tuning_set *&array : context.tuning_sets) {
        array = block;
        block += sets;
    }
    context.set_count = set_count;
    return true;
}

void refer_to_rules(isp_rule_ref &rules, const walked_record &record)
{
    if (record.size < ISP_RULES_START)
        return;
    const uint64_t count = value_at<uint32_t>(record.bytes, ISP_RULE_COUNT_AT);
    const bool fits = count * sizeof(isp_selection_rule) + ISP_RULES_START <= record.size;
    rules.record = record.bytes;
    rules.first_rule = fits ? record.bytes + ISP_RULES_START : nullptr;
}

uint32_t file_records(record_list list, isp_context &context)
{
    row_count_log log;
    const uint32_t status = walk(list, [&](const walked_record &record) -> uint32_t {
        if (record.id == ISP_RULES_ID)
            refer_to_rules(context.rules, record);
        const std::optional<record_place> place = place_of(record.id);
        if (!place || place->kind == nullptr)
            return ISP_SUCCESS;
        isp_tuning_set &set = context.tuning_sets[place->set][record.set_index];
        return store_record(record.bytes, record.size, *place->kind, set, log) ? ISP_SUCCESS : ISP_OUT_OF_MEMORY;
    });
    log.finish();
    return status;
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
    // The size comes first: what a device's library takes for a header may be shorter.
    if (context == nullptr || container == nullptr || container->size < QZ_MKN_HEADER_SIZE ||
        !qz_mkn_is_valid(container, ISP_CONTAINER_TAG))
        return ISP_INVALID_ARGUMENT;
    isp_parse_deinit(context);
    context->rules = {};

    const qz::record_list list = {static_cast<const uint8_t *>(container->data) + QZ_MKN_HEADER_SIZE,
                                  container->size - QZ_MKN_HEADER_SIZE};
    int32_t set_count = 0;
    uint32_t status = qz::check_records(list, set_count);
    if (status != ISP_SUCCESS)
        return status;
    if (!qz::allocate_sets(*context, set_count))
        return ISP_OUT_OF_MEMORY;
    status = qz::file_records(list, *context);
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
