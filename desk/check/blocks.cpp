#include "desk/check/blocks.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/check/slots.h"
#include "tuning/slots.h"

namespace qz::desk {

namespace {

// One for each order of the sets.
constexpr uint32_t tuning_modes[] = {0, 1, 3};

std::vector<isp_tuning_set> select_in_modes(const isp_context &context)
{
    std::vector<isp_tuning_set> selected;
    for (const uint32_t mode : tuning_modes)
        tuningselector(mode, &context, &context.rules, nullptr, nullptr, context.set_count, nullptr,
                       &selected.emplace_back());
    return selected;
}

// The set indices that have a record for a slot.
std::vector<unsigned> indices_with(const checked_container &container, std::string_view slot)
{
    std::vector<unsigned> indices;
    for (const checked_record &record : container.records)
        if (record.kind->slot == slot && (indices.empty() || indices.back() != record.set_index))
            indices.push_back(record.set_index);
    return indices;
}

} // namespace

void check_blocks(const checked_container &container, const isp_context &context, const reporter &report)
{
    const std::vector<isp_tuning_set> selected = select_in_modes(context);
    for (const block_source &source : block_sources()) {
        if (source.slot == tuning_slot::none)
            continue;
        const size_t first_slot = slot_groups[static_cast<size_t>(source.slot)].first;
        std::vector<uint32_t> without;
        for (size_t i = 0; i < selected.size(); ++i)
            if (record_in(selected[i], first_slot) == nullptr)
                without.push_back(tuning_modes[i]);
        if (without.empty())
            continue;
        const std::vector<unsigned> indices = indices_with(container, slot_name(source.slot));
        const std::string modes = without.size() == selected.size()
                                      ? "any tuning_mode"
                                      : fmt::format("tuning_mode {}", fmt::join(without, " and "));
        report.add("block-without-record", indices.empty() ? severity::note : severity::warning,
                   {.name = fmt::format("block {}", source.block)},
                   indices.empty()
                       ? fmt::format("found no record {} in any set", slot_name(source.slot))
                       : fmt::format("found no record {} in {} for frames that take only set index 0; set index {} has "
                                     "one",
                                     slot_name(source.slot), modes, fmt::join(indices, ", ")));
    }
}

} // namespace qz::desk
