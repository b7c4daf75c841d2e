#include "desk/tuning/to_json.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include "desk/json/fields.h"
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

void add_version(json &result, const tuning_record &record)
{
    result["version"] = record.version;
    if (record.unread != 0)
        result["unread"] = record.unread;
}

// Members that a list of records has around it, in their order.
struct list_surroundings {
    json before = json::object();
    json after = json::object();

    json whole() const
    {
        json both = before;
        both.update(after);
        return both;
    }
};

json trailing_json(const record_list &list)
{
    const byte_view bytes = list.trailing();
    return bytes.empty() ? json::object() : json{{"trailing", hex_text(bytes)}};
}

list_surroundings surroundings_of(const tuning_record &record)
{
    list_surroundings result = {{{"set_index", record.id - set_container_base}}, trailing_json(record.nested)};
    add_version(result.before, record);
    if (record.tagged)
        result.before["tagged"] = true;
    if (!all_zero(record.header))
        result.before["header"] = hex_text(record.header);
    return result;
}

list_surroundings surroundings_of(const tuning_container &container)
{
    list_surroundings result = {json::object(), trailing_json(container.list)};
    if (!all_zero(container.header))
        result.before["header"] = hex_text(container.header);
    return result;
}

void write_with_records(json_writer &writer, list_surroundings around, const record_list &list)
{
    if (list.empty()) {
        around.before["records"] = json::array();
        writer.write(around.whole());
        return;
    }
    writer.open(around.before, "records");
    for (const tuning_record &record : list) {
        writer.begin_item();
        if (record.is_set_container)
            write_with_records(writer, surroundings_of(record), record.nested);
        else
            writer.write(source_object(record));
    }
    writer.close(around.after);
}

} // namespace

json source_object(const tuning_container &container)
{
    return surroundings_of(container).whole();
}

json source_object(const tuning_record &record)
{
    if (record.is_set_container)
        return surroundings_of(record).whole();

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

void write_source(const tuning_container &container, const text_sink &sink)
{
    json_writer writer(sink);
    write_with_records(writer, surroundings_of(container), container.list);
    writer.finish();
}

std::string container_source(const tuning_container &container)
{
    std::string text;
    write_source(container, [&](std::string_view part) { text += part; });
    return text;
}

} // namespace qz::desk
