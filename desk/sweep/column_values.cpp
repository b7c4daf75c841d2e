#include "desk/sweep/column_values.h"

#include <fmt/format.h>

#include "qz_isp/checksum.h"

namespace qz::desk {

namespace {

constexpr named_column whole[] = {
    {"bytes_used", [](const sweep_column &, const column_source &frame) -> cell { return frame.record.bytes_used; }},
    {"checksum",
     [](const sweep_column &, const column_source &frame) -> cell {
         return get_checksum(&frame.record.record, frame.record.bytes_used);
     }},
};

const std::optional<record_use> &use_of(const sweep_column &column, const column_source &frame)
{
    return frame.uses[block_number(*column.block)];
}

template <auto member>
cell use_value(const sweep_column &column, const column_source &frame)
{
    const std::optional<record_use> &use = use_of(column, frame);
    return use ? cell((*use).*member) : cell();
}

cell rows_value(const sweep_column &column, const column_source &frame)
{
    const std::optional<record_use> &use = use_of(column, frame);
    return use && !use->rows.empty() ? cell(std::string_view(use->rows)) : cell();
}

cell weight_value(const sweep_column &column, const column_source &frame)
{
    const std::optional<record_use> &use = use_of(column, frame);
    return use && use->weight ? cell(*use->weight) : cell();
}

constexpr named_column origins[] = {{"record", use_value<&record_use::record>},
                                    {"set", use_value<&record_use::set>},
                                    {"index", use_value<&record_use::set_index>},
                                    {"rows", rows_value},
                                    {"weight", weight_value}};

} // namespace

std::span<const named_column> whole_columns()
{
    return whole;
}

std::span<const named_column> origin_columns()
{
    return origins;
}

cell field_value(const sweep_column &column, const column_source &frame)
{
    const record_snapshot &record = frame.record;
    if (!block_present(record, *column.block) ||
        column.indices[0] >= used_count(record, *column.block, *column.described))
        return {};
    return integer_at(*column.described, &record.record, column.indices[0]);
}

cell shading_value(const sweep_column &column, const column_source &frame)
{
    const auto [channel, row, at] = column.indices;
    if (!block_present(frame.record, *column.block))
        return {};
    const shading_table table = shading_channel(frame.record, channel);
    if (at >= table.columns)
        return {};
    const std::optional<uint16_t> entry = table.at(row, at);
    return entry ? cell(int64_t{*entry}) : cell();
}

cell makernote_number(const sweep_column &column, const column_source &frame)
{
    const std::optional<int64_t> value = frame.makernote.number(column.indices[0], column.indices[1]);
    return value ? cell(*value) : cell();
}

cell makernote_text(const sweep_column &column, const column_source &frame)
{
    const std::optional<std::string_view> text = frame.makernote.text(column.indices[0]);
    return text ? cell(*text) : cell();
}

void column_source::take_uses(const frame_origin &origin)
{
    uses.clear();
    for (const block_origin &block : origin.blocks) {
        std::optional<record_use> &use = uses.emplace_back();
        if (block.source != origin::tuning || !block.record)
            continue;
        use = {block.record->kind->name, block.record->set, block.record->set_index, "", std::nullopt};
        if (block.rows) {
            const auto [lower, upper] = std::pair(block.rows->lower, block.rows->upper);
            use->rows = lower == upper ? std::to_string(lower) : fmt::format("{}-{}", lower, upper);
            use->weight = block.rows->weight;
        }
    }
}

} // namespace qz::desk
