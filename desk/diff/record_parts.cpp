#include "desk/diff/record_parts.h"

#include <fmt/format.h>

namespace qz::desk {

namespace {

std::string index_of(const field &described, size_t i)
{
    return described.is_list ? fmt::format("[{}]", i) : "";
}

void add_shading(const record_snapshot &record, std::vector<placed_value> &values)
{
    for (size_t channel = 0; channel < shading_channels; ++channel) {
        const shading_table table = shading_channel(record, channel);
        for (size_t i = 0; i < table.entries.size(); ++i)
            values.push_back({fmt::format("tables[{}]", channel),
                              fmt::format("[{}][{}]", i / table.columns, i % table.columns),
                              std::to_string(table.entries[i])});
    }
}

file_part block_part(const record_snapshot &record, const block_layout &block)
{
    file_part part = {fmt::format("{} {}", block.id, block.name), {}};
    part.values.push_back({"size", "", std::to_string(block_size(record, block))});
    for (const field &described : block.fields) {
        const std::vector<int64_t> values = field_values(record, block, described);
        for (size_t i = 0; i < values.size(); ++i)
            part.values.push_back({std::string(described.name), index_of(described, i), std::to_string(values[i])});
    }
    if (has_shading_tables(block))
        add_shading(record, part.values);
    return part;
}

} // namespace

std::vector<file_part> record_parts(const std::vector<record_snapshot> &records)
{
    std::vector<file_part> parts;
    for (size_t i = 0; i < records.size(); ++i) {
        for (const block_layout &block : record_blocks()) {
            if (!block_present(records[i], block))
                continue;
            parts.push_back(block_part(records[i], block));
            parts.back().name = fmt::format("frame {}, block {}", i, parts.back().name);
        }
    }
    return parts;
}

} // namespace qz::desk
