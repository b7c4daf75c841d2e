#include "desk/sweep/columns.h"

#include <algorithm>
#include <map>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/error.h"
#include "desk/base/one_of.h"
#include "desk/explain/block_sources.h"
#include "desk/makernote/file.h"
#include "desk/sweep/column_values.h"

namespace qz::desk {

namespace {

constexpr uint32_t default_count = 16;
constexpr std::string_view makernote_name = "makernote";
constexpr std::string_view tables_name = "tables";

[[noreturn]] void fail_item(std::string_view item, std::string found, std::string expected)
{
    fail({std::nullopt, fmt::format("fields \"{}\"", item), std::move(found), std::move(expected)});
}

std::string tables_of(std::string_view channels, std::string_view row, std::string_view column)
{
    return fmt::format("{}[{}][{}][{}]", tables_name, channels, row, column);
}

// What a block has beside its fields: where its values came from, unless a field is called so, and tables.
std::vector<std::string> other_names(const block_layout &block)
{
    std::vector<std::string> names;
    if (has_shading_tables(block))
        names.push_back(tables_of("0", "0", "0"));
    for (const named_column &column : origin_columns()) {
        if (!find_part(block.fields, column.name))
            names.emplace_back(column.name);
    }
    return names;
}

// A makernote record's values.
field values_of(const makernote_kind &kind)
{
    return {"value", makernote_element(kind.format).value_or(element::u8), kind.count, kind.count, 0, true};
}

// "[2]", "[0..3]" off the beginning of a text.
std::optional<index_span> take_indices(std::string_view &text, uint32_t limit)
{
    const size_t end = std::min(text.find(']'), text.size() - 1) + 1;
    const std::string_view indices = text.substr(0, end);
    text.remove_prefix(end);
    return indices.starts_with('[') ? find_indices(indices, limit) : std::nullopt;
}

// Columns in the order in which they were chosen, none twice.
class column_list {
  public:
    void add(std::string_view item)
    {
        const std::span whole = whole_columns();
        const auto found = std::ranges::find(whole, item, &named_column::name);
        if (found != whole.end())
            return add_one(item, {std::string(item), std::string(item), nullptr, nullptr, {}, found->value});
        const size_t dot = std::min(item.find('.'), item.size());
        const std::string_view group = item.substr(0, dot);
        const std::string_view rest = item.substr(std::min(dot + 1, item.size()));
        if (group == makernote_name)
            add_makernote(item, rest);
        else
            add_values(item, group, find_block(item, group), dot == item.size() ? "*" : rest);
    }

    void add_small(const block_layout &block)
    {
        for (const field &described : block.fields) {
            if (described.count <= default_count)
                add_part(described.name, block.name, block, {&described, 0, described.count});
        }
    }

    std::vector<sweep_column> take() { return std::move(columns_); }

  private:
    static const block_layout &find_block(std::string_view item, std::string_view name)
    {
        std::vector<std::string> known;
        std::vector<std::string_view> names = {makernote_name};
        for (const block_layout &block : record_blocks()) {
            if (name == block.name || name == fmt::format("block{}", block.id))
                return block;
            known.push_back(fmt::format("block{} ({})", block.id, block.name));
            names.push_back(block.name);
        }
        fail_item(item, fmt::format("the block \"{}\"", name),
                  fmt::format("{}, {}.RECORD, or a field of one of {}{}", whole_column_names(), makernote_name,
                              fmt::join(known, ", "), did_you_mean(name, names)));
    }

    // The column that was asked for keeps the name that it was asked for by.
    void name_last(std::string_view item) { columns_.back().name = item; }

    void add_values(std::string_view item, std::string_view block_name, const block_layout &block,
                    std::string_view name)
    {
        if (name == "*") {
            for (const field &described : block.fields)
                add_part(item, block_name, block, {&described, 0, described.count});
            return;
        }
        if (const std::optional<field_part> part = find_part(block.fields, name)) {
            add_part(item, block_name, block, *part);
            if (part->count == 1)
                name_last(item);
            return;
        }
        const std::span origins = origin_columns();
        const auto origin = std::ranges::find(origins, name, &named_column::name);
        if (origin != origins.end()) {
            add_one(item, {std::string(item),
                           fmt::format("{}.{}", block.name, name),
                           &block,
                           nullptr,
                           {},
                           origin->value,
                           false,
                           true});
            return;
        }
        if (has_shading_tables(block) && name.starts_with(tables_name))
            return add_tables(item, block_name, block, name.substr(tables_name.size()));
        fail_value(item, block, name);
    }

    [[noreturn]] static void fail_value(std::string_view item, const block_layout &block, std::string_view name)
    {
        std::vector<std::string> known;
        for (const field &described : block.fields)
            known.push_back(element_names(described));
        const std::vector<std::string> others = other_names(block);
        std::vector<std::string_view> names = field_names(block.fields);
        names.insert(names.end(), others.begin(), others.end());
        fail_item(item, fmt::format("the field \"{}\"", name),
                  fmt::format("* or one of {}, {} in block {}{}", fmt::join(known, ", "), fmt::join(others, ", "),
                              block.name, did_you_mean(name, names)));
    }

    void add_part(std::string_view item, std::string_view block_name, const block_layout &block, const field_part &part)
    {
        for (uint32_t i = part.first; i < part.first + part.count; ++i) {
            const std::string element = element_name(*part.described, i);
            add_one(item, {fmt::format("{}.{}", block_name, element),
                           fmt::format("{}.{}", block.name, element),
                           &block,
                           part.described,
                           {i},
                           field_value});
        }
    }

    void add_tables(std::string_view item, std::string_view block_name, const block_layout &block,
                    std::string_view indices)
    {
        constexpr auto last = AIC_LENS_SHADING_MAX_ENTRIES - 1;
        std::string_view rest = indices;
        const auto channels = take_indices(rest, shading_channels);
        const auto rows = take_indices(rest, last + 1);
        const auto columns = take_indices(rest, last + 1);
        if (!channels || !rows || !columns || !rest.empty())
            fail_item(item, fmt::format("{}{}", tables_name, indices),
                      fmt::format("{}, an index or FIRST..LAST of each",
                                  tables_of(fmt::format("0 to {}", shading_channels - 1), "ROW", "COLUMN")));
        if (uint64_t{rows->count} * columns->count > last + 1)
            fail_item(item, fmt::format("{} rows of {}", rows->count, columns->count),
                      fmt::format("at most {} entries of a channel", last + 1));
        for (uint32_t channel = channels->first; channel < channels->first + channels->count; ++channel)
            for (uint32_t row = rows->first; row < rows->first + rows->count; ++row)
                for (uint32_t column = columns->first; column < columns->first + columns->count; ++column)
                    add_entry(item, block_name, block, {channel, row, column});
    }

    void add_entry(std::string_view item, std::string_view block_name, const block_layout &block,
                   const std::array<uint32_t, 3> &indices)
    {
        const auto [channel, row, column] = indices;
        const std::string entry = tables_of(std::to_string(channel), std::to_string(row), std::to_string(column));
        add_one(item, {fmt::format("{}.{}", block_name, entry), fmt::format("{}.{}", block.name, entry), &block,
                       nullptr, indices, shading_value});
    }

    void add_makernote(std::string_view item, std::string_view rest)
    {
        const std::span kinds = makernote_kinds();
        const std::string_view name = rest.substr(0, rest.find('.'));
        const auto kind = std::ranges::find(kinds, name, &makernote_kind::name);
        if (kind == kinds.end()) {
            std::vector<std::string_view> names;
            for (const makernote_kind &each : kinds)
                names.push_back(each.name);
            fail_item(item, fmt::format("the makernote record \"{}\"", name), one_of(names, name));
        }
        const auto number = static_cast<uint32_t>(kind - kinds.begin());
        const std::string_view part = name == rest ? "*" : rest.substr(name.size() + 1);
        if (kind->is_text())
            add_makernote_text(item, *kind, number, part);
        else
            add_makernote_numbers(item, *kind, number, part);
    }

    void add_makernote_text(std::string_view item, const makernote_kind &kind, uint32_t number, std::string_view part)
    {
        if (part != "*" && part != "text")
            fail_item(item, fmt::format("\"{}\"", part), fmt::format("text in makernote record {}", kind.name));
        const std::string name = fmt::format("{}.{}.text", makernote_name, kind.name);
        add_one(item, {name, name, nullptr, nullptr, {number}, makernote_text, true});
    }

    void add_makernote_numbers(std::string_view item, const makernote_kind &kind, uint32_t number,
                               std::string_view name)
    {
        const field values = values_of(kind);
        const std::optional<field_part> part = find_part({&values, 1}, name == "*" ? values.name : name);
        if (!part || (kind.count_is_varied && part->count == kind.count))
            fail_item(item, fmt::format("\"{}\"", name),
                      fmt::format("{}{}, an index or FIRST..LAST, in makernote record {}",
                                  kind.count_is_varied ? "" : "* or ", element_names(values), kind.name));
        for (uint32_t i = part->first; i < part->first + part->count; ++i) {
            const std::string value = fmt::format("{}.{}.{}", makernote_name, kind.name, element_name(values, i));
            add_one(item, {value, value, nullptr, nullptr, {number, i}, makernote_number, true});
        }
        if (part->count == 1)
            name_last(item);
    }

    void add_one(std::string_view item, sweep_column column)
    {
        const auto [known, is_new] = places_.try_emplace(column.value_name, columns_.size());
        if (!is_new)
            fail_item(item, fmt::format("{} and {}, the same value", columns_[known->second].name, column.name),
                      "every value once");
        columns_.push_back(std::move(column));
    }

    std::vector<sweep_column> columns_;
    std::map<std::string, size_t> places_; // of values
};

} // namespace

std::vector<sweep_column> choose_columns(const std::optional<std::string> &items)
{
    column_list list;
    if (!items) {
        for (const named_column &whole : whole_columns())
            list.add(whole.name);
        for (const block_layout &block : record_blocks())
            list.add_small(block);
        return list.take();
    }
    size_t start = 0;
    for (size_t end = 0; end != std::string::npos; start = end + 1) {
        end = items->find(',', start);
        list.add(std::string_view(*items).substr(start, end - start));
    }
    return list.take();
}

std::string whole_column_names()
{
    std::string names;
    for (const named_column &whole : whole_columns())
        names += fmt::format("{}{}", names.empty() ? "" : ", ", whole.name);
    return names;
}

std::vector<std::string> column_names()
{
    std::vector<std::string> names;
    for (const named_column &whole : whole_columns())
        names.emplace_back(whole.name);
    for (const block_layout &block : record_blocks()) {
        names.push_back(fmt::format("{}.*", block.name));
        for (const field &described : block.fields)
            names.push_back(fmt::format("{}.{}", block.name, described.name));
        for (const std::string &other : other_names(block))
            names.push_back(fmt::format("{}.{}", block.name, other));
    }
    for (const makernote_kind &kind : makernote_kinds())
        names.push_back(fmt::format("{}.{}.{}", makernote_name, kind.name,
                                    kind.is_text()         ? "text"
                                    : kind.count_is_varied ? "value[0]"
                                                           : "*"));
    return names;
}

column_needs needs_of(const std::vector<sweep_column> &columns)
{
    column_needs needs = {{false, false}, {}, false};
    for (const sweep_column &column : columns) {
        needs.makernote = needs.makernote || column.of_makernote;
        const gate gate = column.block != nullptr ? block_sources()[block_number(*column.block)].needs : gate::always;
        const bool whole = column.block == nullptr;
        needs.parts.gamma = needs.parts.gamma || whole || gate == gate::gamma;
        needs.parts.shading = needs.parts.shading || whole || gate == gate::lens_shading;
        if (column.of_origin) {
            needs.origins.resize(record_blocks().size());
            needs.origins[block_number(*column.block)] = true;
        }
    }
    return needs;
}

} // namespace qz::desk
