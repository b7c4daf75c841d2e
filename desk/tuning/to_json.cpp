#include "desk/tuning/to_json.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "desk/base/json_fields.h"
#include "desk/base/json_text.h"
#include "desk/tuning/source_names.h"

namespace qz::desk {

namespace {

bool all_zero(byte_view bytes)
{
    return std::ranges::all_of(bytes, [](uint8_t byte) { return byte == 0; });
}

json row_json(byte_view bytes, std::span<const field> row)
{
    json values = json::array();
    for (const field &part : row)
        for (size_t i = 0; i < part.count; ++i)
            values.push_back(integer_at(part, bytes.data(), i));
    return values;
}

json rows_json(byte_view bytes, size_t offset, size_t rows, size_t size, std::span<const field> row)
{
    json list = json::array();
    for (size_t i = 0; i < rows; ++i)
        list.push_back(row_json(bytes.subspan(offset + i * size, size), row));
    return list;
}

json macc_json(const json &row)
{
    json matrices = json::array();
    for (size_t i = 2; i < row.size(); i += macc_matrix_size)
        matrices.push_back({row[i], row[i + 1], row[i + 2], row[i + 3]});
    return {{"type", row[0]}, {"key", row[1]}, {"matrices", std::move(matrices)}};
}

// The parts behind the main table that the version promises, as far as the size says they are there.
bool add_fringe_tail(json &result, const tuning_record &record, size_t rows)
{
    const record_kind &kind = *record.place->kind;
    const bool has_count2 = record.version >= ISP_FRINGE_COUNT2_SINCE;
    const bool has_extra = record.version >= ISP_FRINGE_EXTRA_SINCE;
    const size_t count2 = kind.start - record_header_size + kind.size * rows; // in the body
    const size_t extra = count2 + (has_count2 ? sizeof(uint16_t) : 0);
    const size_t expected = extra + (has_extra ? rows * sizeof(isp_fringe_control_extra_row) : 0);
    if (record.body.size() != expected)
        return false;
    if (has_count2)
        result["count2"] = read_le<uint16_t>(record.body, count2);
    if (has_extra)
        result["extra"] = rows_json(record.body, extra, rows, sizeof(isp_fringe_control_extra_row), fringe_extra_row());
    return true;
}

bool add_table(json &result, const tuning_record &record, const record_kind &kind)
{
    const std::optional<int64_t> stated = stated_rows(record);
    const size_t start = kind.start - record_header_size;
    const size_t size = kind.size;
    if (!stated || *stated < 0 || static_cast<uint64_t>(*stated) > (record.body.size() - start) / size)
        return false;
    const auto rows = static_cast<size_t>(*stated);

    if (kind.has_long_rows() && !all_zero(record.body.first(long_rows_reserved)))
        result["reserved"] = hex_text(record.body.first(long_rows_reserved));
    json list = rows_json(record.body, start, rows, size, kind.fields);
    if (kind.layout == ISP_LAYOUT_ENTRIES) {
        std::ranges::transform(list, list.begin(), macc_json);
        result["entries"] = std::move(list);
    } else {
        result["rows"] = std::move(list);
    }
    if (kind.layout == ISP_LAYOUT_ROWS_AND_MORE)
        return add_fringe_tail(result, record, rows);
    return record.body.size() == start + rows * size;
}

bool add_fields(json &result, const tuning_record &record, const record_kind &kind)
{
    if (record.body.size() != kind.size)
        return false;
    write_fields(result, kind.fields, record.body.data());
    return true;
}

json named_or_number(std::span<const std::string_view> names, uint16_t number)
{
    return number >= 1 && number <= names.size() ? json(names[number - 1u]) : json(number);
}

bool add_rules(json &result, const tuning_record &record)
{
    const std::optional<int64_t> count = stated_rows(record);
    if (!count || static_cast<uint64_t>(*count) * rule_size + rules_start != record.size())
        return false;
    if (!all_zero(record.body.first(rules_reserved)))
        result["reserved"] = hex_text(record.body.first(rules_reserved));
    json list = json::array();
    for (size_t at = rules_start - record_header_size; at < record.body.size(); at += rule_size) {
        const auto rule = value_at<isp_selection_rule>(record.body.data(), at);
        if (!std::isfinite(rule.threshold))
            return false;
        json &made = list.emplace_back(json::object());
        made = {{"kind", named_or_number(rule_kinds, rule.kind)},
                {"op", named_or_number(rule_ops, rule.op)},
                {"threshold", rule.threshold},
                {"set_index", rule.set_index}};
        if (rule.unused != 0)
            made["reserved"] = rule.unused;
    }
    result["rules"] = std::move(list);
    return true;
}

bool add_contents(json &result, const tuning_record &record)
{
    if (record.id == rules_id)
        return add_rules(result, record);
    if (!record.place || record.place->kind == nullptr)
        return false;
    const record_kind &kind = *record.place->kind;
    if (kind.layout == ISP_LAYOUT_VALUES)
        return add_fields(result, record, kind);
    return kind.has_rows() && add_table(result, record, kind);
}

json list_json(const record_list &list);

void add_version(json &result, const tuning_record &record)
{
    result["version"] = record.version;
    if (record.unread != 0)
        result["unread"] = record.unread;
}

json set_container_json(const tuning_record &record)
{
    json result = {{"set_index", record.id - set_container_base}};
    add_version(result, record);
    if (record.tagged)
        result["tagged"] = true;
    if (!all_zero(record.header))
        result["header"] = hex_text(record.header);
    result["records"] = list_json(record.nested);
    if (!record.nested.trailing.empty())
        result["trailing"] = hex_text(record.nested.trailing);
    return result;
}

json record_json(const tuning_record &record)
{
    if (record.is_set_container)
        return set_container_json(record);

    json result = json::object();
    if (record.place && record.place->kind != nullptr) {
        result["slot"] = record.place->kind->name;
        result["family"] = record.place->family;
        result["set"] = record.place->set;
    } else if (record.id == rules_id) {
        result["slot"] = "rules";
    } else {
        result["id"] = record.id;
    }
    add_version(result, record);
    json contents = json::object();
    if (add_contents(contents, record))
        result.update(contents);
    else
        result["bytes"] = hex_text(record.body);
    return result;
}

json list_json(const record_list &list)
{
    json records = json::array();
    for (const tuning_record &record : list.records)
        records.push_back(record_json(record));
    return records;
}

} // namespace

json container_json(const tuning_container &container)
{
    json result = json::object();
    if (!all_zero(container.header))
        result["header"] = hex_text(container.header);
    result["records"] = list_json(container.list);
    if (!container.list.trailing.empty())
        result["trailing"] = hex_text(container.list.trailing);
    return result;
}

std::string container_source(const tuning_container &container)
{
    return json_text(container_json(container));
}

} // namespace qz::desk
