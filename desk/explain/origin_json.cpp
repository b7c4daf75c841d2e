#include "desk/explain/origin_json.h"

#include <nlohmann/json.hpp>

namespace qz::desk {

namespace {

json rule_json(const evaluated_rule &rule)
{
    return {{"kind", rule.kind},
            {"area", rule.area ? json(*rule.area) : json(nullptr)},
            {"op", rule.op},
            {"threshold", rule.threshold},
            {"set_index", rule.set_index},
            {"has_set_index", rule.has_set_index},
            {"matches", rule.matches}};
}

json number_or_null(const std::optional<size_t> &number)
{
    return number ? json(*number) : json(nullptr);
}

json record_origin_json(const selected_record &record)
{
    return {{"slot", record.kind->name},
            {"id", record.id},
            {"version", record.version},
            {"set", record.set},
            {"set_index", record.set_index},
            {"rule", number_or_null(record.rule)},
            {"offset", number_or_null(record.offset)}};
}

json rows_json(const row_origin &rows)
{
    return {{"count", rows.count},
            {"lower", {{"row", rows.lower}, {"key", rows.lower_key}, {"weight", 1.0 - rows.weight}}},
            {"upper", {{"row", rows.upper}, {"key", rows.upper_key}, {"weight", rows.weight}}},
            {"values", rows.values}};
}

} // namespace

json frame_origin_json(const frame_origin &frame)
{
    json rules = json::array();
    for (const evaluated_rule &rule : frame.rules)
        rules.push_back(rule_json(rule));
    return {{"tuning", frame.tuning},       {"set_count", frame.set_count},         {"tuning_mode", frame.tuning_mode},
            {"set_order", frame.set_order}, {"index_0_first", frame.index_0_first}, {"rules", std::move(rules)},
            {"gain", frame.gain},           {"gain_why", frame.gain_why},           {"saturation", frame.saturation}};
}

json block_origin_json(const block_origin &block)
{
    json result = {{"from", origin_name(block.source)}, {"why", block.why}};
    if (block.record)
        result["record"] = record_origin_json(*block.record);
    if (block.rows)
        result["rows"] = rows_json(*block.rows);
    json controls = json::array();
    for (const control_origin &control : block.controls)
        controls.push_back({{"control", control.control},
                            {"value", control.value},
                            {"amount", control.amount},
                            {"meaning", control.meaning}});
    result["controls"] = std::move(controls);
    return result;
}

} // namespace qz::desk
