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
    // Everything of an object but its records, which are parts of their own.
    void add(const json &object, const std::string &name)
    {
        json own = object;
        own.erase("records");
        // Records of one place replace one another, so that their order is part of what they are.
        const unsigned number = ++times_[name];
        parts.push_back({number == 1 ? name : fmt::format("{} ({} of this place)", name, number), {}});
        flatten(own, "", "", parts.back().values);
    }

    void add_list(const json &list, unsigned set_index)
    {
        for (const json &record : list) {
            if (record.contains("set_index")) {
                const auto index = record["set_index"].get<unsigned>();
                add(record, fmt::format("set index {}", index));
                add_list(record["records"], index);
            } else {
                add(record, record_name(record, set_index));
            }
        }
    }

    std::vector<file_part> parts;

  private:
    static std::string record_name(const json &record, unsigned set_index)
    {
        if (record.contains("set"))
            return fmt::format("set index {}, set {}, {}", set_index, record["set"].get<unsigned>(),
                               record["slot"].get<std::string>());
        if (record.contains("slot"))
            return record["slot"].get<std::string>();
        return fmt::format("set index {}, id {}", set_index, record["id"].get<unsigned>());
    }

    std::map<std::string, unsigned> times_;
};

} // namespace

std::vector<file_part> tuning_parts(const tuning_container &container)
{
    const json source = container_json(container);
    part_list list;
    list.add(source, "container");
    list.add_list(source["records"], 0);
    return std::move(list.parts);
}

} // namespace qz::desk
