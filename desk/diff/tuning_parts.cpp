#include "desk/diff/tuning_parts.h"

#include <map>
#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "desk/tuning/container.h"
#include "desk/tuning/to_json.h"

namespace qz::desk {

namespace {

// Bytes are hexadecimal digits, which compare by runs of so many bytes.
constexpr size_t run_length = 16;

void add_bytes(const std::string &digits, const std::string &field, std::vector<placed_value> &values)
{
    for (size_t start = 0; start < digits.size(); start += 2 * run_length)
        values.push_back(
            {field, fmt::format("[{}]", start / 2), fmt::format("\"{}\"", digits.substr(start, 2 * run_length))});
}

void flatten(const json &value, const std::string &field, const std::string &index, std::vector<placed_value> &values)
{
    if (field == "bytes" || field == "trailing") {
        add_bytes(value.get<std::string>(), field, values);
        return;
    }
    if (!value.is_structured()) {
        values.push_back({field, index, value.dump()});
        return;
    }
    for (const auto &member : value.items()) {
        if (value.is_array())
            flatten(member.value(), field, fmt::format("{}[{}]", index, member.key()), values);
        else if (field.empty())
            flatten(member.value(), member.key(), "", values);
        else
            flatten(member.value(), field, fmt::format("{}.{}", index, member.key()), values);
    }
}

std::vector<placed_value> values_in(const json &object)
{
    std::vector<placed_value> values;
    flatten(object, "", "", values);
    return values;
}

template <unsigned depth>
std::vector<placed_value> record_values(byte_view record)
{
    return values_in(source_object(*record_list(record, 0, depth).begin()));
}

std::vector<placed_value> container_values(byte_view bytes)
{
    return values_in(source_object(container_of(bytes)));
}

size_t count_records(const record_list &list)
{
    size_t count = 0;
    for (const tuning_record &record : list)
        count += 1 + (record.is_set_container ? count_records(record.nested) : 0);
    return count;
}

class part_list {
  public:
    void add(const std::string &name, byte_view bytes, std::vector<placed_value> (*values_of)(byte_view bytes))
    {
        // Records of one place replace one another, so that their order is part of what they are.
        const unsigned number = ++times_[name];
        file_part &part = parts.emplace_back();
        part.name = number == 1 ? name : fmt::format("{} ({} of this place)", name, number);
        part.bytes = bytes;
        part.values_of = values_of;
    }

    void add_list(const record_list &list, unsigned set_index)
    {
        for (record_iterator next = list.begin(); next != list.end(); ++next) {
            const tuning_record record = *next;
            // One that is nested too deep to be a set container stays one.
            const bool is_bytes = record.id >= first_set_container_id && !record.is_set_container;
            add(record_name(record, set_index), next.rest().first(record.size()),
                is_bytes ? record_values<max_nesting> : record_values<0>);
            if (record.is_set_container)
                add_list(record.nested, record.id - unsigned{set_container_base});
        }
    }

    std::vector<file_part> parts;

  private:
    static std::string record_name(const tuning_record &record, unsigned set_index)
    {
        if (record.is_set_container)
            return fmt::format("set index {}", record.id - set_container_base);
        if (record.place && record.place->kind != nullptr)
            return fmt::format("set index {}, set {}, {}", set_index, record.place->set, record.place->kind->name);
        if (record.id == rules_id)
            return "rules";
        return fmt::format("set index {}, id {}", set_index, record.id);
    }

    std::map<std::string, unsigned> times_;
};

} // namespace

std::vector<file_part> tuning_parts(byte_view container)
{
    const record_list records = container_of(container).list;
    part_list list;
    list.parts.reserve(1 + count_records(records));
    list.add("container", container, container_values);
    list.add_list(records, 0);
    return std::move(list.parts);
}

} // namespace qz::desk
