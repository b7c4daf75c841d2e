#include <algorithm>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include <fmt/format.h>

#include "commands.h"
#include "error.h"
#include "file_values.h"
#include "json.h"
#include "record_dump.h"
#include "tuning_source.h"

namespace qz::tool {

namespace {

constexpr int exit_different = 1;
// Differing elements of one list that are printed without --all.
constexpr size_t short_list = 8;

struct compared_file {
    std::string name;
    std::string_view kind;
    byte_buffer bytes; // of records and tunings, without what no record uses
    std::vector<file_part> parts;
};

// A value that one of the files has otherwise or not at all.
struct difference {
    std::string field;
    std::string index;
    std::optional<std::string> a;
    std::optional<std::string> b;
};

struct part_difference {
    std::string part;
    std::string_view only_in; // the file that alone has the part, or empty
    std::vector<difference> values;
};

bool is_scene(const std::string &name, byte_view bytes)
{
    const std::string_view text(reinterpret_cast<const char *>(bytes.data()), bytes.size());
    return read_document(name, text).find("frames").has_value();
}

byte_buffer used_bytes(const std::vector<record_snapshot> &records)
{
    byte_buffer bytes;
    for (const record_snapshot &each : records) {
        const auto *const start = reinterpret_cast<const uint8_t *>(&each.record);
        bytes.insert(bytes.end(), start, start + each.bytes_used);
    }
    return bytes;
}

compared_file read_compared(const std::string &file)
{
    const std::string name = input_name(file);
    byte_buffer bytes = read_file(file);
    if (is_record_dump(bytes)) {
        const std::vector<record_snapshot> records = read_records(name, bytes);
        return {name, "a record dump", used_bytes(records), record_parts(records)};
    }
    if (!is_container(bytes) && is_scene(name, bytes)) {
        const scene read = read_scene(name, {reinterpret_cast<const char *>(bytes.data()), bytes.size()});
        return {name, "a scene", {}, scene_parts(read)};
    }
    byte_buffer container = container_bytes(name, std::move(bytes));
    std::vector<file_part> parts = tuning_parts(read_container(name, container));
    return {name, "a tuning", std::move(container), std::move(parts)};
}

using value_index = std::unordered_map<std::string, const placed_value *>;

value_index index_values(const file_part &part)
{
    value_index index;
    for (const placed_value &value : part.values)
        index.emplace(value.field + value.index, &value);
    return index;
}

std::vector<difference> compare_values(const file_part &a, const file_part &b)
{
    const value_index in_b = index_values(b);
    std::vector<difference> differences;
    for (const placed_value &value : a.values) {
        const auto other = in_b.find(value.field + value.index);
        if (other == in_b.end())
            differences.push_back({value.field, value.index, value.value, std::nullopt});
        else if (other->second->value != value.value)
            differences.push_back({value.field, value.index, value.value, other->second->value});
    }
    const value_index in_a = index_values(a);
    for (const placed_value &value : b.values) {
        if (!in_a.contains(value.field + value.index))
            differences.push_back({value.field, value.index, std::nullopt, value.value});
    }
    return differences;
}

// Parts in the order of a, then those that b alone has.
std::vector<part_difference> compare_parts(const std::vector<file_part> &a, const std::vector<file_part> &b)
{
    std::unordered_map<std::string_view, const file_part *> in_b;
    for (const file_part &part : b)
        in_b.emplace(part.name, &part);
    std::vector<part_difference> differences;
    for (const file_part &part : a) {
        const auto other = in_b.find(part.name);
        if (other == in_b.end()) {
            differences.push_back({part.name, "A", compare_values(part, {})});
            continue;
        }
        if (std::vector<difference> values = compare_values(part, *other->second); !values.empty())
            differences.push_back({part.name, "", std::move(values)});
        in_b.erase(other);
    }
    for (const file_part &part : b) {
        if (in_b.contains(part.name))
            differences.push_back({part.name, "B", compare_values({}, part)});
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

std::string value_text(const std::optional<std::string> &value)
{
    return value.value_or("nothing");
}

void print_values(std::string &text, const part_difference &part, bool all)
{
    size_t in_field = 0;
    for (size_t i = 0; i < part.values.size(); ++i) {
        const difference &each = part.values[i];
        in_field = i > 0 && part.values[i - 1].field == each.field ? in_field + 1 : 0;
        if (all || in_field < short_list)
            text += fmt::format("  {:<28} {} -> {}\n", each.field + each.index, value_text(each.a), value_text(each.b));
        const bool last = i + 1 == part.values.size() || part.values[i + 1].field != each.field;
        if (!all && last && in_field >= short_list)
            text += fmt::format("  ... {} more of {}, --all shows them\n", in_field + 1 - short_list, each.field);
    }
}

std::string plural(size_t count, std::string_view noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

std::string differences_text(const std::vector<part_difference> &differences, size_t part_count, bool all)
{
    std::string text;
    size_t count = 0;
    for (const part_difference &part : differences) {
        text += part.part + (part.only_in.empty() ? "\n" : fmt::format(": only in {}\n", part.only_in));
        if (part.only_in.empty())
            print_values(text, part, all);
        count += part.values.size();
    }
    if (differences.empty())
        return fmt::format("no difference in {}\n", plural(part_count, "part"));
    return text +
           fmt::format("{} in {} of {}\n", plural(count, "difference"), differences.size(), plural(part_count, "part"));
}

json value_json(const std::optional<std::string> &value)
{
    return value ? json::parse(*value) : json(nullptr);
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

int compare(const diff_options &options)
{
    if (options.a == "-" && options.b == "-")
        throw usage_error("found standard input for both files, expected it for one");
    const compared_file a = read_compared(options.a);
    const compared_file b = read_compared(options.b);
    if (a.kind != b.kind)
        throw usage_error(fmt::format("{}: found {}, expected {} as in {}", b.name, b.kind, a.kind, a.name));
    std::vector<part_difference> differences = compare_parts(a.parts, b.parts);
    if (differences.empty() && a.bytes != b.bytes)
        differences.push_back(hidden_difference(a, b));
    write_text("-", options.as_json ? differences_json(differences)
                                    : differences_text(differences, a.parts.size(), options.all));
    return differences.empty() ? exit_success : exit_different;
}

} // namespace

int diff(const diff_options &options)
{
    // 1 is an answer here, so that every error gives 2.
    try {
        return compare(options);
    } catch (const closed_pipe &) {
        throw;
    } catch (const std::exception &error) {
        throw usage_error(error.what());
    }
}

} // namespace qz::tool
