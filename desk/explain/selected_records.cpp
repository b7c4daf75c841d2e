#include "desk/explain/selected_records.h"

#include <algorithm>
#include <cstring>

#include "desk/tuning/source_names.h"
#include "tuning/selection_rule.h"

namespace qz::desk {

namespace {

struct slot_place {
    std::string_view name;
    size_t offset; // in isp_tuning_set
};

#define QZ_SLOT(name) slot_place{#name, offsetof(isp_tuning_set, name)},
constexpr slot_place slots[] = {ISP_TUNING_SLOTS(QZ_SLOT)};
#undef QZ_SLOT

const isp_record *record_in(const isp_tuning_set &set, const slot_place &slot)
{
    const isp_record *record = nullptr;
    std::memcpy(&record, reinterpret_cast<const uint8_t *>(&set) + slot.offset, sizeof(void *));
    return record;
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
    for (const tuning_record &record : list.records) {
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

evaluated_rule evaluate(const uint8_t *bytes, const frame_inputs &inputs, int32_t set_count)
{
    isp_selection_rule rule;
    std::memcpy(&rule, bytes, sizeof rule);
    evaluated_rule result = {name_of(rule_kinds, rule.kind),
                             name_of(rule_ops, rule.op),
                             rule.threshold,
                             rule.set_index,
                             rule.set_index < set_count,
                             std::nullopt,
                             false};
    const isp_geometry *frame = inputs.frame ? &inputs.frame->size : nullptr;
    if (const isp_geometry *size = compared_geometry(rule.kind, frame, inputs.aux_size ? &*inputs.aux_size : nullptr)) {
        result.area = area_of(*size);
        result.matches = matches(rule, *result.area);
    }
    return result;
}

} // namespace

std::string_view slot_name(tuning_slot slot)
{
    return slots[static_cast<size_t>(slot)].name;
}

filed_records::filed_records(const isp_session &session)
{
    std::map<set_slot, size_t> offsets;
    find_offsets(read_container("", session.container()).list, 0, offsets);
    const isp_context &context = session.context();
    for (unsigned index = 0; index < static_cast<unsigned>(context.set_count); ++index) {
        for (uint8_t set = 0; set < 3; ++set) {
            for (const slot_place &slot : slots) {
                const auto offset = offsets.find({index, set, slot.name});
                places_[record_in(context.tuning_sets[set][index], slot)] = {
                    set, index, offset != offsets.end() ? std::optional(offset->second) : std::nullopt};
            }
        }
    }
}

frame_selection::frame_selection(const isp_session &session, const filed_records &filed, const frame_inputs &inputs)
    : filed_(&filed), selected_(session.selection(inputs)), index_0_first_(inputs.selection_list.has_value())
{
    // With a single set index the rules have nothing to choose from.
    const isp_context &context = session.context();
    if (context.rules.first_rule == nullptr || context.set_count < 2)
        return;
    const byte_view record(static_cast<const uint8_t *>(context.rules.record), rules_start);
    const auto *rule = static_cast<const uint8_t *>(context.rules.first_rule);
    for (uint32_t i = read_le<uint32_t>(record, rules_start - 4); i > 0; --i, rule += rule_size)
        rules_.push_back(evaluate(rule, inputs, context.set_count));
}

std::optional<selected_record> frame_selection::find(tuning_slot slot) const
{
    const isp_record *copy = record_in(selected_, slots[static_cast<size_t>(slot)]);
    if (copy == nullptr)
        return std::nullopt;
    const auto &[set, set_index, offset] = filed_->place_of(copy);
    const bool ruled = set_index != 0 || !index_0_first_;
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

bool has_gain_rows(const record_kind &kind)
{
    return kind.has_rows() && kind.layout != ISP_LAYOUT_ENTRIES;
}

int32_t record_rows::key(size_t row) const
{
    const byte_view start(bytes + row * size, sizeof(int32_t));
    return wide ? read_le<int32_t>(start, 0) : read_le<uint16_t>(start, 0);
}

record_rows rows_of(const selected_record &record)
{
    const bool wide = record.kind->has_long_rows();
    const auto *bytes = reinterpret_cast<const uint8_t *>(record.copy) + record.kind->start;
    record_rows rows = {0, record.kind->size, bytes, wide};
    if (wide) {
        int32_t count = 0;
        std::memcpy(&count, bytes - sizeof count, sizeof count);
        rows.count = count > 0 ? static_cast<size_t>(count) : 0;
    } else {
        uint16_t count = 0;
        std::memcpy(&count, bytes - sizeof count, sizeof count);
        rows.count = count;
    }
    return rows;
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
