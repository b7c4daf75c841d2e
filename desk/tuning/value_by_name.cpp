#include "desk/tuning/value_by_name.h"

#include <algorithm>
#include <map>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

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

void find_records(const record_list &list, unsigned set_index, std::map<std::string_view, placed_records> &found)
{
    for (const tuning_record &record : list) {
        if (record.is_set_container)
            find_records(record.nested, record.id - unsigned{set_container_base}, found);
        else if (record.place && record.place->kind != nullptr && !record.place->kind->fields.empty())
            found[record.place->kind->name].insert_or_assign(fmt::format("[{}/{}]", record.place->set, set_index),
                                                             record);
    }
}

std::vector<std::string_view> keys_of(const auto &map)
{
    std::vector<std::string_view> keys;
    keys.reserve(map.size());
    for (const auto &member : map)
        keys.push_back(member.first);
    return keys;
}

const tuning_record &find_record(const value_option &option, const value_name &name, const placed_records &places)
{
    if (name.place.empty() && places.size() == 1)
        return places.begin()->second;
    const auto found = places.find(std::string(name.place));
    if (found == places.end())
        option.fail(fmt::format("{}{}", name.record, name.place),
                    fmt::format("its set and set index: {}{}", name.record,
                                fmt::join(keys_of(places), fmt::format(", {}", name.record))));
    return found->second;
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
    const tuning_container read = read_container("tuning", container);
    std::map<std::string_view, placed_records> records;
    find_records(read.list, 0, records);
    const value_name parts(name.substr(tuning_prefix.size()));
    const auto places = records.find(parts.record);
    if (places == records.end())
        option.fail(fmt::format("the record \"{}\"", parts.record), one_of(keys_of(records), parts.record));
    const tuning_record &record = find_record(option, parts, places->second);
    const record_kind &kind = *record.place->kind;

    std::string_view rest = parts.rest;
    size_t offset = kind.start - record_header_size;
    if (kind.has_rows()) {
        const size_t room = record.body.size() < offset ? 0 : (record.body.size() - offset) / kind.size;
        const int64_t stated = std::max<int64_t>(0, stated_rows(record).value_or(0));
        const uint64_t row = take_row(option, rest, kind.layout == ISP_LAYOUT_ENTRIES ? "entries" : "rows",
                                      std::min(static_cast<uint64_t>(stated), uint64_t{room}));
        offset += static_cast<size_t>(row) * kind.size;
    }
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

} // namespace qz::desk
