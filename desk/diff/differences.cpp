#include "desk/diff/differences.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/json/text.h"

namespace qz::desk {

namespace {

using value_index = std::unordered_map<std::string, const placed_value *>;

std::vector<placed_value> values_of(const file_part &part)
{
    return part.values_of != nullptr ? part.values_of(part.bytes) : part.values;
}

value_index index_values(const std::vector<placed_value> &values)
{
    value_index index;
    for (const placed_value &value : values)
        index.emplace(value.field + value.index, &value);
    return index;
}

std::vector<difference> compare_values(const file_part &a, const file_part &b)
{
    if (a.values_of != nullptr && a.values_of == b.values_of && std::ranges::equal(a.bytes, b.bytes))
        return {};
    const std::vector<placed_value> values_a = values_of(a), values_b = values_of(b);
    const value_index in_b = index_values(values_b);
    std::vector<difference> differences;
    for (const placed_value &value : values_a) {
        const auto other = in_b.find(value.field + value.index);
        if (other == in_b.end())
            differences.push_back({value.field, value.index, value.value, std::nullopt});
        else if (other->second->value != value.value)
            differences.push_back({value.field, value.index, value.value, other->second->value});
    }
    const value_index in_a = index_values(values_a);
    for (const placed_value &value : values_b) {
        if (!in_a.contains(value.field + value.index))
            differences.push_back({value.field, value.index, std::nullopt, value.value});
    }
    return differences;
}

// Parts in the order of a, then those that b alone has.
std::vector<part_difference> compare_parts(const std::vector<file_part> &a, const std::vector<file_part> &b)
{
    std::unordered_map<std::string_view, const file_part *> in_b;
    in_b.reserve(b.size());
    for (const file_part &part : b)
        in_b.emplace(part.name, &part);
    std::vector<part_difference> differences;
    for (const file_part &part : a) {
        const auto other = in_b.find(part.name);
        if (other == in_b.end()) {
            differences.push_back({part.name, "A", compare_values(part, {}), part.title});
            continue;
        }
        if (std::vector<difference> values = compare_values(part, *other->second); !values.empty())
            differences.push_back(
                {part.name, "", std::move(values), part.title == other->second->title ? part.title : ""});
        in_b.erase(other);
    }
    for (const file_part &part : b) {
        if (in_b.contains(part.name))
            differences.push_back({part.name, "B", compare_values({}, part), part.title});
    }
    return differences;
}

std::string json_quoted(std::string_view text)
{
    return fmt::format("\"{}\"", text);
}

// Of files whose values are the same and whose bytes are not: parts in another order, or bytes that no value shows.
part_difference hidden_difference(const compared_file &a, const compared_file &b)
{
    const auto [part_a, part_b] = std::ranges::mismatch(a.parts, b.parts, {}, &file_part::name, &file_part::name);
    if (part_a != a.parts.end() && part_b != b.parts.end())
        return {"order",
                "",
                {{"part", fmt::format("[{}]", part_a - a.parts.begin()), json_quoted(part_a->name),
                  json_quoted(part_b->name)}}};
    const auto [byte_a, byte_b] = std::ranges::mismatch(a.bytes, b.bytes);
    const auto value = [](auto byte, auto end) {
        return byte != end ? std::optional(std::to_string(*byte)) : std::optional<std::string>();
    };
    return {"bytes without a name",
            "",
            {{"byte", fmt::format("[{}]", byte_a - a.bytes.begin()), value(byte_a, a.bytes.end()),
              value(byte_b, b.bytes.end())}}};
}

json value_json(const std::optional<std::string> &value)
{
    return value ? json::parse(*value) : json(nullptr);
}

} // namespace

std::vector<part_difference> compare_files(const compared_file &a, const compared_file &b)
{
    if (a.kind != b.kind)
        fail({b.name, "", std::string(b.kind), fmt::format("{} as in {}", a.kind, a.name)});
    std::vector<part_difference> differences = compare_parts(a.parts, b.parts);
    if (differences.empty() && a.bytes != b.bytes)
        differences.push_back(hidden_difference(a, b));
    return differences;
}

std::string differences_json(const std::vector<part_difference> &differences)
{
    json list = json::array();
    for (const part_difference &part : differences) {
        for (const difference &each : part.values)
            list.push_back({{"part", part.part},
                            {"field", each.field + each.index},
                            {"a", value_json(each.a)},
                            {"b", value_json(each.b)}});
    }
    return json_text({{"equal", differences.empty()}, {"differences", std::move(list)}});
}

} // namespace qz::desk
