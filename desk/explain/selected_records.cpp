#include "desk/explain/selected_records.h"

#include <algorithm>
#include <iterator>

#include "desk/tuning/source_names.h"
#include "tuning/record_view.h"
#include "tuning/selection_rule.h"
#include "tuning/slots.h"

namespace qz::desk {

namespace {

#define QZ_SLOT(name) #name,
constexpr std::string_view slot_names[] = {ISP_TUNING_SLOTS(QZ_SLOT)};
#undef QZ_SLOT

// As in slot_names, slot_groups and tuning_slot.
const isp_record *listed_record(const isp_tuning_set &set, size_t number)
{
    return record_in(set, slot_groups[number].first);
}

struct set_slot {
    unsigned set_index;
    uint8_t set;
    std::string_view slot;

    auto operator<=>(const set_slot &) const = default;
};

// Where the container holds what is filed into each slot: what comes last stays.
void find_offsets(const record_list &list, unsigned set_index, std::map<set_slot, size_t> &offsets)
{
    for (const tuning_record &record : list) {
        if (record.is_set_container)
            find_offsets(record.nested, record.id - unsigned{set_container_base}, offsets);
        else if (record.place && record.place->kind != nullptr)
            offsets[{set_index, record.place->set, record.place->kind->slot}] = record.offset;
    }
}

template <size_t count>
std::string_view name_of(const std::string_view (&names)[count], uint16_t number)
{
    return number >= 1 && number <= count ? names[number - 1u] : "";
}

evaluated_rule evaluate(const isp_selection_rule &rule, const frame_inputs &inputs, int32_t set_count)
{
    evaluated_rule result = {name_of(rule_kinds, rule.kind),
                             name_of(rule_ops, rule.op),
                             rule.threshold,
                             rule.set_index,
                             rule.set_index < set_count,
                             std::nullopt,
                             false};
    const isp_geometry *frame = inputs.frame ? &inputs.frame->size : nullptr;
    if (const isp_geometry *size = compared_geometry(rule.kind, frame, address_of(inputs.aux_size))) {
        result.area = area_of(*size);
        result.matches = matches(rule, *result.area);
    }
    return result;
}

} // namespace

std::string_view slot_name(tuning_slot slot)
{
    return slot_names[static_cast<size_t>(slot)];
}

filed_records::filed_records(const isp_session &session)
{
    std::map<set_slot, size_t> offsets;
    find_offsets(read_container("", session.container()).list, 0, offsets);
    const isp_context &context = session.context();
    for (unsigned index = 0; index < static_cast<unsigned>(context.set_count); ++index) {
        for (uint8_t set = 0; set < 3; ++set) {
            for (size_t slot = 0; slot < std::size(slot_names); ++slot) {
                const auto offset = offsets.find({index, set, slot_names[slot]});
                places_[listed_record(context.tuning_sets[set][index], slot)] = {
                    set, index, offset != offsets.end() ? std::optional(offset->second) : std::nullopt};
            }
        }
    }
}

frame_selection::frame_selection(const isp_session &session, const filed_records &filed, const frame_inputs &inputs)
    : filed_(&filed), selected_(session.selection(inputs)), index_0_first_(inputs.selection_list.has_value()),
      follows_rules_(has_rules(session.context().rules, session.context().set_count))
{
    const isp_context &context = session.context();
    if (context.rules.record == nullptr || context.rules.first_rule == nullptr)
        return;
    const auto count = value_at<uint32_t>(context.rules.record, ISP_RULE_COUNT_AT);
    for (size_t i = 0; i < count; ++i)
        rules_.push_back(
            evaluate(value_at<isp_selection_rule>(context.rules.first_rule, i * rule_size), inputs, context.set_count));
}

std::optional<selected_record> frame_selection::find(tuning_slot slot) const
{
    const isp_record *copy = listed_record(selected_, static_cast<size_t>(slot));
    if (copy == nullptr)
        return std::nullopt;
    const auto &[set, set_index, offset] = filed_->place_of(copy);
    const bool ruled = follows_rules_ && (set_index != 0 || !index_0_first_);
    return selected_record{find_place(copy->id)->kind,
                           copy,
                           copy->id,
                           copy->version,
                           set,
                           set_index,
                           ruled ? rule_of(set_index) : std::nullopt,
                           offset};
}

std::optional<size_t> frame_selection::rule_of(unsigned set_index) const
{
    const auto found =
        std::ranges::find_if(rules_, [&](const auto &rule) { return rule.matches && rule.set_index == set_index; });
    return found != rules_.end() ? std::optional(static_cast<size_t>(found - rules_.begin())) : std::nullopt;
}

int32_t record_rows::key(size_t row) const
{
    return wide ? value_at<int32_t>(bytes, row * size) : value_at<uint16_t>(bytes, row * size);
}

record_rows rows_of(const selected_record &record)
{
    const record_kind &kind = *record.kind;
    return {row_count(record.copy, kind.layout), kind.size, reinterpret_cast<const uint8_t *>(record.copy) + kind.start,
            kind.has_long_rows()};
}

std::vector<int32_t> row_values(const selected_record &record, size_t row)
{
    const record_rows rows = rows_of(record);
    const uint8_t *bytes = rows.bytes + row * rows.size;
    std::vector<int32_t> values;
    for (const field &part : record.kind->fields)
        for (size_t i = 0; i < part.count; ++i)
            values.push_back(static_cast<int32_t>(integer_at(part, bytes, i)));
    return values;
}

} // namespace qz::desk
