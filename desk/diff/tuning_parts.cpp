#include "desk/diff/tuning_parts.h"

#include <map>
#include <nlohmann/json.hpp>

#include <fmt/format.h>

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

class part_list {
  public:
    void add(const json &object, const std::string &name)
    {
        // Records of one place replace one another, so that their order is part of what they are.
        const unsigned number = ++times_[name];
        parts.push_back({number == 1 ? name : fmt::format("{} ({} of this place)", name, number), {}});
        flatten(object, "", "", parts.back().values);
    }

    void add_list(const record_list &list, unsigned set_index)
    {
        for (const tuning_record &record : list) {
            add(source_object(record), record_name(record, set_index));
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

std::vector<file_part> tuning_parts(const tuning_container &container)
{
    part_list list;
    list.add(source_object(container), "container");
    list.add_list(container.list, 0);
    return std::move(list.parts);
}

} // namespace qz::desk
