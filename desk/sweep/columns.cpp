#include "desk/sweep/columns.h"

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/base/error.h"
#include "desk/base/one_of.h"
#include "qz_isp/checksum.h"

namespace qz::desk {

namespace {

constexpr uint32_t default_count = 16;

// A number about the whole record.
struct whole_column {
    std::string_view name;
    uint32_t (*value)(const record_snapshot &snapshot);
};

constexpr whole_column whole_columns[] = {
    {"bytes_used", [](const record_snapshot &snapshot) { return snapshot.bytes_used; }},
    {"checksum",
     [](const record_snapshot &snapshot) -> uint32_t { return get_checksum(&snapshot.record, snapshot.bytes_used); }},
};

[[noreturn]] void fail_item(std::string_view item, std::string found, std::string expected)
{
    fail({std::nullopt, fmt::format("fields \"{}\"", item), std::move(found), std::move(expected)});
}

// Columns in the order in which they were chosen, none twice.
class column_list {
  public:
    void add(std::string_view item)
    {
        const auto *const whole = std::ranges::find(whole_columns, item, &whole_column::name);
        if (whole != std::end(whole_columns))
            return add_one(item, {std::string(item), nullptr, nullptr, 0, whole->value});
        const size_t dot = std::min(item.find('.'), item.size());
        const std::string_view block_name = item.substr(0, dot);
        const std::string_view field_name = item.substr(std::min(dot + 1, item.size()));
        add_fields(item, block_name, find_block(item, block_name), field_name);
    }

    void add_small(const block_layout &block)
    {
        for (const field &described : block.fields) {
            if (described.count <= default_count)
                add_part(described.name, block.name, block, {&described, 0, described.count});
        }
    }

    std::vector<sweep_column> columns;

  private:
    static const block_layout &find_block(std::string_view item, std::string_view name)
    {
        std::vector<std::string> known;
        std::vector<std::string_view> names;
        for (const block_layout &block : record_blocks()) {
            if (name == block.name || name == fmt::format("block{}", block.id))
                return block;
            known.push_back(fmt::format("block{} ({})", block.id, block.name));
            names.push_back(block.name);
        }
        fail_item(item, fmt::format("the block \"{}\"", name),
                  fmt::format("{}, or a field of one of {}{}", whole_column_names(), fmt::join(known, ", "),
                              did_you_mean(name, names)));
    }

    void add_fields(std::string_view item, std::string_view block_name, const block_layout &block,
                    std::string_view field_name)
    {
        if (field_name == "*") {
            for (const field &described : block.fields)
                add_part(item, block_name, block, {&described, 0, described.count});
            return;
        }
        const std::optional<field_part> part = find_part(block.fields, field_name);
        if (!part) {
            std::vector<std::string> known;
            for (const field &described : block.fields)
                known.push_back(element_names(described));
            fail_item(item, fmt::format("the field \"{}\"", field_name),
                      fmt::format("* or one of {} in block {}{}", fmt::join(known, ", "), block.name,
                                  did_you_mean(field_name, field_names(block.fields))));
        }
        add_part(item, block_name, block, *part);
        // A single value keeps the name that it was asked for by.
        if (part->count == 1)
            columns.back().name = item;
    }

    void add_part(std::string_view item, std::string_view block_name, const block_layout &block, const field_part &part)
    {
        for (uint32_t i = part.first; i < part.first + part.count; ++i)
            add_one(item, {fmt::format("{}.{}", block_name, element_name(*part.described, i)), &block, part.described,
                           i, nullptr});
    }

    void add_one(std::string_view item, sweep_column column)
    {
        for (const sweep_column &other : columns) {
            if (other.whole == column.whole && other.described == column.described && other.index == column.index)
                fail_item(item, fmt::format("{} and {}, the same value", other.name, column.name), "every value once");
        }
        columns.push_back(std::move(column));
    }
};

} // namespace

std::vector<sweep_column> choose_columns(const std::optional<std::string> &items)
{
    column_list list;
    if (!items) {
        for (const whole_column &whole : whole_columns)
            list.add(whole.name);
        for (const block_layout &block : record_blocks())
            list.add_small(block);
        return std::move(list.columns);
    }
    size_t start = 0;
    for (size_t end = 0; end != std::string::npos; start = end + 1) {
        end = items->find(',', start);
        list.add(std::string_view(*items).substr(start, end - start));
    }
    return std::move(list.columns);
}

std::string whole_column_names()
{
    std::string names;
    for (const whole_column &whole : whole_columns)
        names += fmt::format("{}{}", names.empty() ? "" : ", ", whole.name);
    return names;
}

std::optional<int64_t> column_value(const sweep_column &column, const record_snapshot &snapshot)
{
    if (column.block == nullptr)
        return column.whole(snapshot);
    if (!block_present(snapshot, *column.block) ||
        column.index >= used_count(snapshot, *column.block, *column.described))
        return std::nullopt;
    return integer_at(*column.described, &snapshot.record, column.index);
}

} // namespace qz::desk
