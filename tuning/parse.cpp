// Parsing a tuning container into tuning sets.
#include <algorithm>
#include <cstdlib>
#include <iterator>

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_mkn.h"
#include "tuning/record_view.h"
#include "tuning/record_walk.h"
#include "tuning/slots.h"
#include "tuning/store_record.h"

namespace qz {
namespace {

// Finds all that is wrong with a container before anything is made of it, and how many set indices it has.
uint32_t check_records(record_list list, int32_t &set_count)
{
    set_count = 1;
    const auto check = [&](const walked_record &record) -> uint32_t {
        if (record.is_set_container())
            set_count = std::max(set_count, record.nested_index() + 1);
        const std::optional<record_place> place = place_of(record.id);
        return place && place->refused ? ISP_INVALID_DATA : ISP_SUCCESS;
    };
    return walk(list, check, refuse_malformed);
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
    if (!replaces_rules(record))
        return;
    rules.record = record.bytes;
    rules.first_rule = holds_its_rules(record) ? record.bytes + ISP_RULES_START : nullptr;
}

uint32_t file_records(record_list list, isp_context &context)
{
    row_count_log log;
    const auto file = [&](const walked_record &record) -> uint32_t {
        if (record.id == ISP_RULES_ID)
            refer_to_rules(context.rules, record);
        const std::optional<record_place> place = place_of(record.id);
        if (!place || place->kind == nullptr)
            return ISP_SUCCESS;
        isp_tuning_set &set = context.tuning_sets[place->set][record.set_index];
        return store_record(record.bytes, record.size, *place->kind, set, log) ? ISP_SUCCESS : ISP_OUT_OF_MEMORY;
    };
    const uint32_t status = walk(list, file, refuse_malformed);
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
