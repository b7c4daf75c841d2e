// Per-frame selection of tuning records.
#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "tuning/bytes.h"
#include "tuning/slots.h"

namespace qz {
namespace {

// The sets of one set index in the order in which they are asked for a record.
struct candidates {
    const isp_tuning_set *sets[3];
};

candidates candidates_of(uint32_t tuning_mode, const isp_context &context, int32_t set_index)
{
    const auto set = [&](size_t i) { return &context.tuning_sets[i][set_index]; };
    switch (tuning_mode) {
    case 0: return {{set(1), set(2), set(0)}};
    case 3: return {{set(2), set(1), set(0)}};
    default: return {{set(0), set(1), set(2)}};
    }
}

// Fills the output's empty groups, each from the first candidate that has a record for it.
void merge_tuning_sets(const candidates &from, isp_tuning_set &output)
{
    for (const slot_group group : slot_groups) {
        if (group.first == QZ_SLOT_GROUP(rec_1).first || record_in(output, group.first) != nullptr)
            continue;
        for (const isp_tuning_set *set : from.sets) {
            if (record_in(*set, group.first) == nullptr)
                continue;
            std::memcpy(slot_address(output, group.first), slot_address(*set, group.first),
                        group.slots * sizeof(void *));
            break;
        }
    }
}

struct selection_rule {
    uint16_t kind;
    uint16_t op;
    uint16_t set_index;
    double threshold;
};

selection_rule read_rule(const uint8_t *bytes)
{
    return {read_at<uint16_t>(bytes, 0), read_at<uint16_t>(bytes, 2), read_at<uint16_t>(bytes, 4),
            read_at<double>(bytes, 8)};
}

// Wraps as a signed 32-bit product.
double area_of(const isp_geometry &geometry)
{
    return static_cast<int32_t>(static_cast<uint32_t>(geometry.width) * geometry.height);
}

bool matches(const selection_rule &rule, const isp_geometry *frame, const isp_geometry *aux_size)
{
    const isp_geometry *compared = rule.kind == 1 ? frame : rule.kind == 2 ? aux_size : nullptr;
    if (compared == nullptr)
        return false;
    const double area = area_of(*compared);
    switch (rule.op) {
    case 1: return area == rule.threshold;
    case 2: return area < rule.threshold;
    case 3: return area > rule.threshold;
    case 4: return area <= rule.threshold;
    case 5: return area >= rule.threshold;
    default: return false;
    }
}

} // namespace
} // namespace qz

uint32_t tuningselector(uint32_t tuning_mode, const isp_context *context, const isp_rule_ref *rules,
                        const isp_geometry *frame, const isp_geometry *aux_size, int32_t set_count,
                        const uint32_t *selection_list, isp_tuning_set *output)
{
    if (output == nullptr)
        return ISP_INVALID_ARGUMENT;
    *output = {};
    if (context == nullptr)
        return ISP_INVALID_ARGUMENT;
    if (context->tuning_sets[0] == nullptr)
        return ISP_SUCCESS;

    const auto merge = [&](int32_t set_index) {
        qz::merge_tuning_sets(qz::candidates_of(tuning_mode, *context, set_index), *output);
    };
    if (selection_list != nullptr)
        merge(0);
    if (rules != nullptr && rules->record != nullptr && rules->first_rule != nullptr && set_count >= 2) {
        constexpr size_t rule_size = 16;
        const auto rule_count = qz::read_at<uint32_t>(rules->record, 12);
        const auto *bytes = static_cast<const uint8_t *>(rules->first_rule);
        for (uint32_t i = 0; i < rule_count; ++i, bytes += rule_size) {
            const qz::selection_rule rule = qz::read_rule(bytes);
            if (rule.set_index < set_count && qz::matches(rule, frame, aux_size))
                merge(rule.set_index);
        }
    }
    merge(0);
    return ISP_SUCCESS;
}
