// Per-frame selection of tuning records.
#include <algorithm>
#include <cstring>
#include <limits>

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "tuning/record_view.h"
#include "tuning/selection_rule.h"
#include "tuning/slots.h"

namespace qz {
namespace {

// Fills the output's empty groups, each from the first of an index's sets that has a record for it.
void merge_tuning_sets(const isp_context &context, uint32_t tuning_mode, int32_t set_index, isp_tuning_set &output)
{
    const auto [first, second, third] = set_order(tuning_mode);
    const auto set = [&](size_t place) { return &context.tuning_sets[place][set_index]; };
    const isp_tuning_set *const candidates[] = {set(first), set(second), set(third)};
    for (const slot_group group : slot_groups) {
        if (group.first == QZ_SLOT_GROUP(rec_1).first || record_in(output, group.first) != nullptr)
            continue;
        for (const isp_tuning_set *candidate : candidates) {
            if (record_in(*candidate, group.first) == nullptr)
                continue;
            std::memcpy(slot_address(output, group.first), slot_address(*candidate, group.first),
                        group.slots * sizeof(void *));
            break;
        }
    }
}

// Calls merge with the set index of each rule that matches, in their order; with each index once, as the second time
// would find nothing to fill.
template <typename Merge>
void follow_rules(const isp_rule_ref &rules, const isp_geometry *frame, const isp_geometry *aux_size, int32_t set_count,
                  const Merge &merge)
{
    constexpr double none = std::numeric_limits<double>::quiet_NaN(); // matches no threshold
    const auto area_for = [&](uint16_t kind) {
        const isp_geometry *compared = compared_geometry(kind, frame, aux_size);
        return compared != nullptr ? area_of(*compared) : none;
    };
    const double areas[] = {area_for(0), area_for(1), area_for(2), area_for(3)}; // all kinds above 2 as 3

    // By set index: all ops, or none once the index is merged; and none for indices that are not there.
    uint8_t ops_left[ISP_MAX_SET_INDICES + 1];
    const size_t sets = std::min<size_t>(static_cast<size_t>(set_count), ISP_MAX_SET_INDICES);
    std::fill_n(ops_left, sets, uint8_t{0xff});
    ops_left[sets] = 0;

    const void *const first = rules.first_rule;
    const size_t rule_count = value_at<uint32_t>(rules.record, ISP_RULE_COUNT_AT);
    for (size_t i = 0; i < rule_count; ++i) {
        const auto rule = value_at<isp_selection_rule>(first, i * sizeof(isp_selection_rule));
        const size_t index = std::min<size_t>(rule.set_index, sets);
        const double area = areas[std::min<size_t>(rule.kind, 3)];
        const unsigned ops = matching_ops(area, rule.threshold) & ops_left[index];
        if (is_among(rule.op, ops)) {
            ops_left[index] = 0;
            merge(rule.set_index);
        }
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

    const auto merge = [&](int32_t set_index) { qz::merge_tuning_sets(*context, tuning_mode, set_index, *output); };
    if (selection_list != nullptr)
        merge(0);
    if (rules != nullptr && qz::has_rules(*rules, set_count))
        qz::follow_rules(*rules, frame, aux_size, set_count, merge);
    merge(0);
    return ISP_SUCCESS;
}
