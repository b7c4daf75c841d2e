#include "desk/tuning/pack.h"

#include <algorithm>
#include <iterator>
#include <limits>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/base/one_of.h"
#include "desk/json/fields.h"
#include "desk/tuning/container.h"
#include "desk/tuning/source_names.h"

namespace qz::desk {

namespace {

constexpr int64_t default_version = 100;

template <typename T>
void append_le(byte_buffer &bytes, T value)
{
    for (size_t i = 0; i < sizeof(T); ++i)
        bytes.push_back(static_cast<uint8_t>(static_cast<uint64_t>(value) >> (8 * i)));
}

void append(byte_buffer &bytes, byte_view more)
{
    bytes.insert(bytes.end(), more.begin(), more.end());
}

void append_element(byte_buffer &bytes, element type, const json_node &node)
{
    const size_t size = element_size(type);
    const bool is_signed = type == element::i8 || type == element::i16 || type == element::i32;
    const auto bits = static_cast<int64_t>(8 * size);
    const int64_t low = is_signed ? -(int64_t{1} << (bits - 1)) : 0;
    const int64_t high = (int64_t{1} << (is_signed ? bits - 1 : bits)) - 1;
    const auto value = static_cast<uint64_t>(node.integer(low, high));
    for (size_t i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(value >> (8 * i)));
}

void append_row(byte_buffer &bytes, std::span<const field> row, const json_items &values)
{
    auto value = values.begin();
    for (const field &part : row)
        for (size_t i = 0; i < part.count; ++i)
            append_element(bytes, part.type, *value++);
}

size_t row_length(std::span<const field> row)
{
    size_t length = 0;
    for (const field &part : row)
        length += part.count;
    return length;
}

void append_rows(byte_buffer &bytes, std::span<const field> row, const json_items &rows)
{
    const size_t length = row_length(row);
    for (const json_node &each : rows)
        append_row(bytes, row, each.items(length));
}

void append_macc(byte_buffer &bytes, std::span<const field> row, const json_items &entries)
{
    for (const json_node &entry : entries) {
        entry.expect_names({"type", "key", "matrices"});
        append_element(bytes, row[0].type, entry.at("type"));
        append_element(bytes, row[1].type, entry.at("key"));
        for (const json_node &matrix : entry.at("matrices").items(macc_matrices)) {
            for (const json_node &coefficient : matrix.items(macc_matrix_size))
                append_element(bytes, row[2].type, coefficient);
        }
    }
}

json_items counted_rows(const json_node &list, uint64_t limit)
{
    const json_items rows = list.items();
    if (rows.size() > limit)
        list.fail(fmt::format("{} rows", rows.size()), fmt::format("at most {}", limit));
    return rows;
}

void append_fringe_tail(byte_buffer &bytes, const json_node &node, int64_t version, size_t rows)
{
    const auto has = [&](std::string_view name, uint32_t since) {
        if (version < since && node.find(name))
            node.fail(fmt::format("\"{}\" in version {}", name, version),
                      fmt::format("version {} or above with it", since));
        return version >= since;
    };
    const bool has_count2 = has("count2", ISP_FRINGE_COUNT2_SINCE);
    const bool has_extra = has("extra", ISP_FRINGE_EXTRA_SINCE);
    if (has_count2)
        append_element(bytes, element::u16, node.at("count2"));
    if (has_extra)
        append_rows(bytes, fringe_extra_row(), node.at("extra").items(rows));
}

void append_table(byte_buffer &bytes, const json_node &node, const record_kind &kind, int64_t version)
{
    const bool wide = kind.has_long_rows();
    const bool is_macc = kind.layout == ISP_LAYOUT_ENTRIES;
    const json_items rows = counted_rows(node.at(is_macc ? "entries" : "rows"), wide ? INT32_MAX : UINT16_MAX);
    if (wide) {
        const std::optional<json_node> reserved = node.find("reserved");
        append(bytes, reserved ? reserved->hex(long_rows_reserved) : byte_buffer(long_rows_reserved));
        append_le(bytes, static_cast<uint32_t>(rows.size()));
    } else {
        append_le(bytes, static_cast<uint16_t>(rows.size()));
    }
    if (is_macc)
        append_macc(bytes, kind.fields, rows);
    else
        append_rows(bytes, kind.fields, rows);
    if (kind.layout == ISP_LAYOUT_ROWS_AND_MORE)
        append_fringe_tail(bytes, node, version, rows.size());
}

void append_fields(byte_buffer &bytes, const json_node &node, const record_kind &kind)
{
    const size_t start = bytes.size();
    bytes.resize(start + kind.size);
    for (const field &described : kind.fields)
        static_cast<void>(node.at(described.name));
    read_fields(node, kind.fields, bytes.data() + start);
}

uint16_t read_named(const json_node &node, std::span<const std::string_view> names)
{
    if (!node.is_text())
        return static_cast<uint16_t>(node.integer(0, UINT16_MAX));
    const auto found = std::ranges::find(names, node.text());
    if (found == names.end())
        node.fail(fmt::format("\"{}\"", node.text()), one_of(names, node.text()));
    return static_cast<uint16_t>(found - names.begin() + 1);
}

void append_rules(byte_buffer &bytes, const json_node &node)
{
    const std::optional<json_node> reserved = node.find("reserved");
    append(bytes, reserved ? reserved->hex(rules_reserved) : byte_buffer(rules_reserved));
    const json_items rules = node.at("rules").items();
    append_le(bytes, static_cast<uint32_t>(rules.size()));
    for (const json_node &rule : rules) {
        rule.expect_names({"kind", "op", "threshold", "set_index", "reserved"});
        const std::optional<json_node> unused = rule.find("reserved");
        using limits = std::numeric_limits<double>;
        const isp_selection_rule packed = {
            .kind = read_named(rule.at("kind"), rule_kinds),
            .op = read_named(rule.at("op"), rule_ops),
            .set_index = static_cast<uint16_t>(rule.at("set_index").integer(0, UINT16_MAX)),
            .unused = static_cast<uint16_t>(unused ? unused->integer(0, UINT16_MAX) : 0),
            .threshold = rule.at("threshold").number(limits::lowest(), limits::max()),
        };
        append(bytes, byte_view(reinterpret_cast<const uint8_t *>(&packed), sizeof packed));
    }
}

uint16_t slot_id(const json_node &node)
{
    const json_node slot = node.at("slot");
    const std::string_view name = slot.text();
    if (name == "rules")
        return rules_id;
    const auto kinds = record_kinds();
    const auto kind = std::ranges::find(kinds, name, &record_kind::name);
    if (kind == kinds.end()) {
        std::vector<std::string_view> names = {"rules"};
        std::ranges::transform(kinds, std::back_inserter(names), &record_kind::name);
        slot.fail(fmt::format("\"{}\"", name), one_of(names, name));
    }

    const json_node family = node.at("family");
    const json_node set = node.at("set");
    const int64_t base = family.integer(0, UINT16_MAX);
    if (std::ranges::find(families, base) == families.end())
        family.fail(std::to_string(base), fmt::format("{}, {} or {}", families[0], families[1], families[2]));
    const std::optional<uint16_t> id =
        id_of(*kind, static_cast<uint16_t>(base), static_cast<uint8_t>(set.integer(0, 2)));
    if (!id)
        family.fail(std::to_string(base), fmt::format("a family that has the slot {}", name));
    return *id;
}

// The names that a record may have besides those of its place, version and raw bytes.
std::vector<std::string_view> content_names(const record_kind *kind)
{
    if (kind == nullptr)
        return {};
    switch (kind->layout) {
    case ISP_LAYOUT_VALUES: return field_names(kind->fields);
    case ISP_LAYOUT_ENTRIES: return {"entries"};
    case ISP_LAYOUT_ROWS_AND_MORE: return {"rows", "count2", "extra"};
    case ISP_LAYOUT_ROWS: return {"rows"};
    case ISP_LAYOUT_LONG_ROWS: return {"reserved", "rows"};
    default: return {};
    }
}

void append_body(byte_buffer &bytes, const json_node &node, uint16_t id, int64_t version)
{
    std::vector<std::string_view> names = {"version", "unread", "id"};
    if (node.find("slot"))
        names = {"version", "unread", "slot"};
    if (node.find("slot") && id != rules_id)
        names.insert(names.end(), {"family", "set"});
    if (node.find("bytes")) {
        names.emplace_back("bytes");
        node.expect_names(names);
        return append(bytes, node.at("bytes").hex());
    }
    const std::optional<record_place> place = find_place(id);
    const record_kind *kind = place ? place->kind : nullptr;
    const std::vector<std::string_view> contents =
        id == rules_id ? std::vector<std::string_view>{"reserved", "rules"} : content_names(kind);
    names.insert(names.end(), contents.begin(), contents.end());
    node.expect_names(names);
    if (id == rules_id)
        append_rules(bytes, node);
    else if (kind != nullptr && kind->layout == ISP_LAYOUT_VALUES)
        append_fields(bytes, node, *kind);
    else if (kind != nullptr && kind->has_rows())
        append_table(bytes, node, *kind, version);
    else
        append(bytes, node.at("bytes").hex());
}

void append_list(byte_buffer &bytes, const json_node &node, unsigned depth);

void append_set_container(byte_buffer &bytes, const json_node &node, unsigned depth)
{
    node.expect_names({"set_index", "version", "unread", "tagged", "header", "records", "trailing"});
    if (depth >= max_nesting)
        node.fail(fmt::format("a set container nested more than {} deep", max_nesting), "its bytes, with its id");
    const std::optional<json_node> tagged = node.find("tagged");
    const std::optional<json_node> header = node.find("header");
    if (tagged && tagged->boolean()) {
        append_le(bytes, container_tag);
        append(bytes, header ? header->hex(container_header_size - 4) : byte_buffer(container_header_size - 4));
    } else if (header) {
        header->fail("a header", "none without \"tagged\": true");
    }
    append_list(bytes, node, depth + 1);
}

void append_record(byte_buffer &bytes, const json_node &node, unsigned depth)
{
    const std::optional<json_node> given_version = node.find("version");
    const std::optional<json_node> unread = node.find("unread");
    const std::optional<json_node> set_index = node.find("set_index");
    const std::optional<json_node> given_id = node.find("id");
    const int64_t version = given_version ? given_version->integer(0, UINT8_MAX) : default_version;
    uint16_t id = 0;
    if (set_index)
        id = static_cast<uint16_t>(set_container_base + set_index->integer(1, UINT16_MAX - set_container_base));
    else
        id = given_id ? static_cast<uint16_t>(given_id->integer(0, UINT16_MAX)) : slot_id(node);

    const size_t start = bytes.size();
    append_le(bytes, uint32_t{0}); // the size, once it is known
    bytes.push_back(static_cast<uint8_t>(version));
    bytes.push_back(static_cast<uint8_t>(unread ? unread->integer(0, UINT8_MAX) : 0));
    append_le(bytes, id);
    if (set_index)
        append_set_container(bytes, node, depth);
    else
        append_body(bytes, node, id, version);
    for (size_t i = 0; i < sizeof(uint32_t); ++i)
        bytes[start + i] = static_cast<uint8_t>(uint64_t{bytes.size() - start} >> (8 * i));
}

void append_list(byte_buffer &bytes, const json_node &node, unsigned depth)
{
    for (const json_node &record : node.at("records").items())
        append_record(bytes, record, depth);
    if (const std::optional<json_node> trailing = node.find("trailing"))
        append(bytes, trailing->hex());
}

} // namespace

byte_buffer pack_container(const std::string &file, std::string_view text)
{
    const json_document document = parse_json(file, text);
    const json_node root(document);
    root.expect_names({"header", "records", "trailing"});
    byte_buffer bytes;
    append_le(bytes, container_tag);
    const std::optional<json_node> header = root.find("header");
    append(bytes, header ? header->hex(container_header_size - 4) : byte_buffer(container_header_size - 4));
    append_list(bytes, root, 0);
    if (bytes.size() > UINT32_MAX)
        fail({file, "", fmt::format("a container of {} bytes", bytes.size()), "at most 4294967295"});
    return bytes;
}

} // namespace qz::desk
