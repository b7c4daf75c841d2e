#include "desk/tuning/value_by_name.h"

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/error.h"
#include "desk/base/numbers.h"
#include "desk/base/one_of.h"
#include "desk/tuning/container.h"

namespace qz::desk {

namespace {

// "noise_reduction[0/1].rows[2].param0" in its parts.
struct value_name {
    std::string_view record;
    std::string_view place; // "[0/1]"; may be empty
    std::string_view rest;

    explicit value_name(std::string_view name)
    {
        const size_t dot = name.find('.');
        record = name.substr(0, dot);
        rest = dot == std::string_view::npos ? "" : name.substr(dot + 1);
        const size_t bracket = std::min(record.find('['), record.size());
        place = record.substr(bracket);
        record = record.substr(0, bracket);
    }
};

// The records of a name by their places, the last of each.
using placed_records = std::map<std::string, tuning_record>;
using named_records = std::map<std::string, placed_records, std::less<>>;

std::string place_of(const tuning_record &record, unsigned set_index)
{
    return fmt::format("[{}/{}]", record.place ? std::to_string(record.place->set) : "-", set_index);
}

bool has_fields(const tuning_record &record)
{
    return record.place && record.place->kind != nullptr && !record.place->kind->fields.empty();
}

std::string name_without_place(const tuning_record &record)
{
    if (record.place && record.place->kind != nullptr)
        return std::string(record.place->kind->name);
    return record.id == rules_id ? "rules" : std::to_string(record.id);
}

// Calls visit with every record that is no set container, and its set index.
template <typename Visit>
void for_each_record(const record_list &list, unsigned set_index, const Visit &visit)
{
    for (const tuning_record &record : list) {
        if (record.is_set_container)
            for_each_record(record.nested, record.id - unsigned{set_container_base}, visit);
        else
            visit(record, set_index);
    }
}

named_records records_with_fields(const tuning_container &container)
{
    named_records found;
    for_each_record(container.list, 0, [&](const tuning_record &record, unsigned set_index) {
        if (has_fields(record))
            found[std::string(record.place->kind->name)].insert_or_assign(place_of(record, set_index), record);
    });
    return found;
}

std::vector<std::string_view> keys_of(const auto &map)
{
    std::vector<std::string_view> keys;
    keys.reserve(map.size());
    for (const auto &member : map)
        keys.push_back(member.first);
    return keys;
}

// choice: what fails where there is none.
template <typename Choice>
const tuning_record &find_record(const Choice &choice, const value_name &name, const placed_records &places)
{
    if (name.place.empty() && places.size() == 1)
        return places.begin()->second;
    const auto found = places.find(std::string(name.place));
    if (found == places.end())
        choice.fail(fmt::format("{}{}", name.record, name.place),
                    fmt::format("its set and set index: {}{}", name.record,
                                fmt::join(keys_of(places), fmt::format(", {}", name.record))));
    return found->second;
}

// Of the command line, among the records of a file.
struct record_choice {
    const std::string &file;
    std::string_view name;

    [[noreturn]] void fail(std::string found, std::string expected) const
    {
        desk::fail({file, fmt::format("record {}", name), std::move(found), std::move(expected)});
    }
};

// Rows that the record states and holds.
size_t held_rows(const tuning_record &record)
{
    const record_kind &kind = *record.place->kind;
    const size_t start = kind.start - record_header_size;
    const uint64_t room = record.body.size() < start ? 0 : (record.body.size() - start) / kind.size;
    const int64_t stated = std::max<int64_t>(0, stated_rows(record).value_or(0));
    return static_cast<size_t>(std::min(static_cast<uint64_t>(stated), room));
}

// The source calls some rows entries.
std::string_view rows_name(const record_kind &kind)
{
    return kind.layout == ISP_LAYOUT_ENTRIES ? "entries" : "rows";
}

// "rows[2]." off a name's rest; the row. The source calls some rows entries.
uint64_t take_row(const value_option &option, std::string_view &rest, std::string_view name, uint64_t rows)
{
    const std::string opening = fmt::format("{}[", name);
    const size_t closing = rest.find("].");
    std::optional<uint64_t> row;
    if (rest.starts_with(opening) && closing != std::string_view::npos)
        row = whole_number_of(rest.substr(opening.size(), closing - opening.size()));
    if (!row || *row >= rows)
        option.fail(fmt::format("\"{}\"", rest), rows == 0
                                                     ? fmt::format("a record with {}", name)
                                                     : fmt::format("{0}[0]. to {0}[{1}]. and a field", name, rows - 1));
    rest.remove_prefix(closing + 2);
    return *row;
}

} // namespace

named_value find_tuning_value(const value_option &option, std::string_view name, byte_buffer &container)
{
    const named_records records = records_with_fields(read_container("tuning", container));
    const value_name parts(name.substr(tuning_prefix.size()));
    const auto places = records.find(parts.record);
    if (places == records.end())
        option.fail(fmt::format("the record \"{}\"", parts.record), one_of(keys_of(records), parts.record));
    const tuning_record &record = find_record(option, parts, places->second);
    const record_kind &kind = *record.place->kind;

    std::string_view rest = parts.rest;
    size_t offset = kind.start - record_header_size;
    if (kind.has_rows())
        offset += static_cast<size_t>(take_row(option, rest, rows_name(kind), held_rows(record))) * kind.size;
    const std::optional<field_part> part = find_part(kind.fields, rest);
    if (!part || part->count != 1) {
        std::vector<std::string> known;
        for (const field &described : kind.fields)
            known.push_back(element_names(described));
        option.fail(fmt::format("the field \"{}\"", rest),
                    fmt::format("one of {}{}", fmt::join(known, ", "), did_you_mean(rest, field_names(kind.fields))));
    }
    offset += part->described->offset + part->first * element_size(part->described->type);
    if (offset + element_size(part->described->type) > record.body.size())
        option.fail("a record that ends before", "one that has the field");
    return {std::string(name), part->described->type, container.data() + record.offset + record_header_size + offset,
            nullptr};
}

std::vector<value_names> tuning_value_names(const tuning_container &container)
{
    std::vector<value_names> names;
    const auto add = [&](const std::string &prefix, const record_kind &kind, size_t rows) {
        const auto row = [&](size_t number) {
            return kind.has_rows() ? fmt::format("{}{}[{}].", prefix, rows_name(kind), number) : prefix;
        };
        for (const field &described : kind.fields) {
            const std::string first = row(0) + element_name(described, 0);
            const std::string last = row(rows - 1) + element_name(described, described.count - 1);
            names.push_back({first, last == first ? "" : last, values_of(described.type)});
        }
    };
    for (const auto &[name, places] : records_with_fields(container)) {
        for (const auto &[place, record] : places) {
            const size_t rows = record.place->kind->has_rows() ? held_rows(record) : 1;
            if (rows > 0)
                add(fmt::format("{}{}{}.", tuning_prefix, name, places.size() > 1 ? place : ""), *record.place->kind,
                    rows);
        }
    }
    return names;
}

std::string record_name(const tuning_record &record, unsigned set_index)
{
    return record.id == rules_id ? "rules" : name_without_place(record) + place_of(record, set_index);
}

std::pair<tuning_record, std::string> find_tuning_record(const std::string &file, std::string_view name,
                                                         const tuning_container &container)
{
    named_records records;
    const std::optional<uint64_t> id = whole_number_of(name.substr(0, name.find('[')));
    for_each_record(container.list, 0, [&](const tuning_record &record, unsigned set_index) {
        if (id && record.id == *id)
            records[std::to_string(*id)].insert_or_assign(place_of(record, set_index), record);
        records[name_without_place(record)].insert_or_assign(record.id == rules_id ? "" : place_of(record, set_index),
                                                             record);
    });
    const record_choice choice = {file, name};
    const value_name parts(name);
    const auto places = records.find(parts.record);
    if (places == records.end())
        choice.fail("none of that name", one_of(keys_of(records), parts.record));
    if (!parts.rest.empty())
        choice.fail(fmt::format("\".{}\"", parts.rest), "a record, not a value of it");
    const tuning_record &found = find_record(choice, parts, places->second);
    for (const auto &[place, record] : places->second) {
        if (record.offset == found.offset)
            return {found, found.id == rules_id ? "rules" : name_without_place(found) + place};
    }
    return {found, std::string(name)};
}

std::vector<std::string> tuning_record_names(const tuning_container &container)
{
    std::set<std::string> names;
    for_each_record(container.list, 0, [&](const tuning_record &record, unsigned set_index) {
        names.insert(record_name(record, set_index));
    });
    return {names.begin(), names.end()};
}

} // namespace qz::desk
