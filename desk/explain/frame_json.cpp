#include "desk/explain/frame_json.h"

#include <nlohmann/json.hpp>

#include "desk/explain/origin_json.h"
#include "desk/json/text.h"

namespace qz::desk {

namespace {

json shading_json(const record_snapshot &snapshot)
{
    json tables = json::array();
    for (size_t channel = 0; channel < shading_channels; ++channel) {
        const shading_table table = shading_channel(snapshot, channel);
        json rows = json::array();
        for (size_t row = 0; row < table.rows; ++row) {
            json &entries = rows.emplace_back(json::array());
            for (size_t column = 0; column < table.columns; ++column) {
                const std::optional<uint16_t> entry = table.at(row, column);
                entries.push_back(entry ? json(*entry) : json(nullptr));
            }
        }
        tables.push_back(std::move(rows));
    }
    return tables;
}

json block_json(const record_snapshot &snapshot, const block_layout &block)
{
    json fields = json::object();
    for (const field &described : block.fields) {
        const std::vector<int64_t> values = field_values(snapshot, block, described);
        json &value = fields[std::string(described.name)];
        if (described.is_list)
            value = values;
        else if (!values.empty())
            value = values[0];
    }
    if (has_shading_tables(block))
        fields["tables"] = shading_json(snapshot);
    return {{"id", block.id},
            {"name", block.name},
            {"offset", block.offset},
            {"size", block_size(snapshot, block)},
            {"fields", std::move(fields)}};
}

json record_json(const record_snapshot &snapshot, const std::optional<frame_origin> &origin)
{
    json blocks = json::array();
    for (const block_layout &block : record_blocks()) {
        if (block_present(snapshot, block)) {
            blocks.push_back(block_json(snapshot, block));
            if (origin)
                blocks.back()["origin"] = block_origin_json(origin->blocks[block_number(block)]);
        }
    }
    return blocks;
}

} // namespace

json frame_json(const computed_frame &frame)
{
    json made = {{"index", frame.index}, {"name", frame.name}, {"bytes_used", frame.snapshot.bytes_used}};
    if (frame.origin)
        made["origin"] = frame_origin_json(*frame.origin);
    made["blocks"] = record_json(frame.snapshot, frame.origin);
    return made;
}

std::string frames_json(const std::vector<computed_frame> &frames)
{
    json list = json::array();
    for (const computed_frame &frame : frames)
        list.push_back(frame_json(frame));
    return json_text({{"frames", std::move(list)}});
}

} // namespace qz::desk
