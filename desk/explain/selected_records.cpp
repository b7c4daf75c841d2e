#include "selected_records.h"

#include <algorithm>
#include <cstring>

#include "tuning_source.h"

namespace qz::tool {

namespace {

struct slot_place {
    std::string_view name;
    size_t offset; // in isp_tuning_set
};

#define QZ_SLOT(name)                                                                                                  \
    {                                                                                                                  \
#name, offsetof(isp_tuning_set, name)                                                                          \
    }
// Slots that a frame reads.
constexpr slot_place slots[] = {
    QZ_SLOT(rec_3),
    QZ_SLOT(macc),
    QZ_SLOT(defect_pixel_correction),
    QZ_SLOT(noise_reduction),
    QZ_SLOT(edge_enhancement),
    QZ_SLOT(y_edge_enhancement),
    QZ_SLOT(fringe_control),
    QZ_SLOT(chroma_nr),
    QZ_SLOT(ctc_config),
    QZ_SLOT(rec_13),
    QZ_SLOT(temporal_noise_reduction),
    QZ_SLOT(xnr),
    QZ_SLOT(rec_16),
    QZ_SLOT(long_3),
    QZ_SLOT(long_5),
    QZ_SLOT(long_6),
    QZ_SLOT(long_7),
    QZ_SLOT(long_13),
    QZ_SLOT(long_12),
    QZ_SLOT(long_11),
};
#undef QZ_SLOT

const isp_record *record_in(const isp_tuning_set &set, std::string_view slot)
{
    const auto *const place = std::ranges::find(slots, slot, &slot_place::name);
    const isp_record *record = nullptr;
    std::memcpy(&record, reinterpret_cast<const uint8_t *>(&set) + place->offset, sizeof(void *));
    return record;
}

// The record that was filed last into a slot, in the order of the container.
void find_last(const record_list &list, unsigned index, const selected_record &wanted, std::string_view slot,
               const tuning_record *&found)
{
    for (const tuning_record &record : list.records) {
        if (record.is_set_container)
            find_last(record.nested, record.id - unsigned{set_container_base}, wanted, slot, found);
        else if (index == wanted.set_index && record.place && record.place->kind != nullptr &&
                 record.place->set == wanted.set && slot_name(*record.place->kind) == slot)
            found = &record;
    }
}

bool holds(uint16_t op, double area, double threshold)
{
    switch (op) {
    case 1: return area == threshold;
    case 2: return area < threshold;
    case 3: return area > threshold;
    case 4: return area <= threshold;
    case 5: return area >= threshold;
    default: return false;
    }
}

const isp_geometry *geometry_of(uint16_t kind, const frame_inputs &inputs)
{
    if (kind == 1)
        return inputs.frame ? &inputs.frame->size : nullptr;
    return kind == 2 && inputs.aux_size ? &*inputs.aux_size : nullptr;
}

template <size_t count>
std::string_view name_of(const std::string_view (&names)[count], uint16_t number)
{
    return number >= 1 && number <= count ? names[number - 1u] : "";
}

evaluated_rule evaluate(const uint8_t *bytes, const frame_inputs &inputs, int32_t set_count)
{
    const byte_view rule(bytes, rule_size);
    const auto kind = read_le<uint16_t>(rule, 0);
    const auto op = read_le<uint16_t>(rule, 2);
    const auto set_index = read_le<uint16_t>(rule, 4);
    evaluated_rule result = {name_of(rule_kinds, kind), name_of(rule_ops, op), 0,    set_index,
                             set_index < set_count,     std::nullopt,          false};
    const auto threshold = read_le<uint64_t>(rule, 8);
    std::memcpy(&result.threshold, &threshold, sizeof threshold);
    if (const isp_geometry *size = geometry_of(kind, inputs)) {
        // Areas of 2^31 and more are negative.
        result.area = static_cast<int32_t>(uint32_t{size->width} * size->height);
        result.matches = holds(op, *result.area, result.threshold);
    }
    return result;
}

} // namespace

frame_selection::frame_selection(const isp_session &session, const frame_inputs &inputs)
    : context_(&session.context()), container_(read_container("", session.container())),
      selected_(session.selection(inputs)), index_0_first_(inputs.selection_list.has_value())
{
    // With a single set index the rules have nothing to choose from.
    if (context_->rules.first_rule == nullptr || context_->set_count < 2)
        return;
    const byte_view record(static_cast<const uint8_t *>(context_->rules.record), rules_start);
    const auto *rule = static_cast<const uint8_t *>(context_->rules.first_rule);
    for (uint32_t i = read_le<uint32_t>(record, rules_start - 4); i > 0; --i, rule += rule_size)
        rules_.push_back(evaluate(rule, inputs, context_->set_count));
}

std::optional<selected_record> frame_selection::find(std::string_view slot) const
{
    const isp_record *copy = record_in(selected_, slot);
    if (copy == nullptr)
        return std::nullopt;
    selected_record result = {
        find_place(copy->id)->kind, copy, copy->id, copy->version, 0, 0, std::nullopt, std::nullopt};
    const auto set_count = static_cast<unsigned>(context_->set_count);
    for (unsigned place = 0; place < 3 * set_count; ++place) {
        if (record_in(context_->tuning_sets[place % 3][place / 3], slot) == copy) {
            result.set = static_cast<uint8_t>(place % 3);
            result.set_index = place / 3;
        }
    }
    const tuning_record *found = nullptr;
    find_last(container_.list, 0, result, slot, found);
    if (found != nullptr)
        result.offset = found->offset;
    if (result.set_index != 0 || !index_0_first_)
        result.rule = rule_of(result.set_index);
    return result;
}

std::optional<size_t> frame_selection::rule_of(unsigned set_index) const
{
    const auto found =
        std::ranges::find_if(rules_, [&](const auto &rule) { return rule.matches && rule.set_index == set_index; });
    return found != rules_.end() ? std::optional(static_cast<size_t>(found - rules_.begin())) : std::nullopt;
}

std::array<uint8_t, 3> set_order(uint32_t tuning_mode)
{
    if (tuning_mode == 0)
        return {1, 2, 0};
    if (tuning_mode == 3)
        return {2, 1, 0};
    return {0, 1, 2};
}

int64_t record_rows::key(size_t row) const
{
    const byte_view start(bytes + row * size, sizeof(int32_t));
    return wide ? int64_t{read_le<int32_t>(start, 0)} : int64_t{read_le<uint16_t>(start, 0)};
}

record_rows rows_of(const selected_record &record)
{
    const uint32_t start = rows_offset(record.kind->shape);
    const bool wide = record.kind->shape == record_shape::rows32;
    const auto *bytes = reinterpret_cast<const uint8_t *>(record.copy) + start;
    record_rows rows = {0, row_size(record.kind->row), bytes, wide};
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
    for (const element_run &part : record.kind->row) {
        const field described = {"", part.type, part.count, 1, 0, true};
        for (size_t i = 0; i < part.count; ++i)
            values.push_back(static_cast<int32_t>(integer_at(described, bytes, i)));
        bytes += part.count * element_size(part.type);
    }
    return values;
}

} // namespace qz::tool
