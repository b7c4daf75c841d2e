#include "desk/compare/run_result.h"

#include <algorithm>
#include <cstring>
#include <map>

#include <fmt/format.h>

#include "desk/makernote/file.h"
#include "desk/makernote/frame_values.h"

namespace qz::desk {

namespace {

// A block's size and its shading tables count as fields before and behind the others.
constexpr uint32_t size_field = 0;
constexpr uint32_t first_field = 1;

// A place in a lens shading table has its row in the upper half of its index.
constexpr uint32_t row_shift = 16;

using values = std::vector<int64_t>;

const uint8_t *bytes_of(const record_snapshot &record)
{
    return reinterpret_cast<const uint8_t *>(&record.record);
}

std::string brackets(uint32_t index)
{
    return fmt::format("[{}]", index);
}

class difference_finder {
  public:
    difference_finder(const run_result &old_run, const run_result &new_run, std::vector<value_pair> &found)
        : old_(old_run), new_(new_run), found_(found)
    {}

    void compare_records()
    {
        const auto used = [](const run_result &run) { return values{run.record.bytes_used}; };
        compare({value_list::whole_record, 0}, used(old_), used(new_));
        for (const block_layout &block : record_blocks()) {
            if (is_in_old(block) != is_in_new(block) || differs(block))
                compare_block(block);
        }
        for (const block_layout &block : record_blocks()) {
            if (is_in_old(block) && is_in_new(block) && differs(block))
                compare_unnamed(block);
        }
    }

    void compare_makernotes()
    {
        if (old_.makernote == new_.makernote)
            return;
        const size_t before = found_.size();
        const auto old_values = makernote_values(old_);
        const auto new_values = makernote_values(new_);
        std::map<uint32_t, std::pair<values, values>> both;
        for (const auto &[name, list] : old_values)
            both[name].first = list;
        for (const auto &[name, list] : new_values)
            both[name].second = list;
        for (const auto &[name, lists] : both)
            compare({value_list::makernote, name}, lists.first, lists.second);
        if (found_.size() == before)
            compare({value_list::makernote_bytes, 0}, {old_.makernote.begin(), old_.makernote.end()},
                    {new_.makernote.begin(), new_.makernote.end()});
    }

  private:
    void add(value_list list, uint32_t index, std::optional<int64_t> old_value, std::optional<int64_t> new_value)
    {
        if (old_value != new_value)
            found_.push_back({list, index, old_value, new_value});
    }

    void compare(value_list list, const values &old_values, const values &new_values)
    {
        const auto at = [](const values &all, size_t i) {
            return i < all.size() ? std::optional(all[i]) : std::nullopt;
        };
        for (size_t i = 0; i < std::max(old_values.size(), new_values.size()); ++i)
            add(list, static_cast<uint32_t>(i), at(old_values, i), at(new_values, i));
    }

    // Of a block and the padding behind it; the last one has all the rest.
    static size_t end_of(const block_layout &block)
    {
        const size_t next = block_number(block) + 1;
        return next < record_blocks().size() ? record_blocks()[next].offset : sizeof(aic_record);
    }

    bool is_in_old(const block_layout &block) const { return block_present(old_.record, block); }
    bool is_in_new(const block_layout &block) const { return block_present(new_.record, block); }

    bool differs(const block_layout &block) const
    {
        return std::memcmp(bytes_of(old_.record) + block.offset, bytes_of(new_.record) + block.offset,
                           end_of(block) - block.offset) != 0;
    }

    void compare_block(const block_layout &block)
    {
        const bool in_old = is_in_old(block);
        const bool in_new = is_in_new(block);
        const auto number = static_cast<uint32_t>(block_number(block));
        const auto size = [&](const run_result &run, bool present) {
            return present ? values{block_size(run.record, block)} : values{};
        };
        compare({number, size_field}, size(old_, in_old), size(new_, in_new));
        uint32_t field_number = first_field;
        for (const field &described : block.fields) {
            const auto list = [&](const run_result &run, bool present) {
                return present ? field_values(run.record, block, described) : values{};
            };
            compare({number, field_number++}, list(old_, in_old), list(new_, in_new));
        }
        for (uint32_t channel = 0; has_shading_tables(block) && channel < shading_channels; ++channel)
            compare_tables({number, field_number + channel}, shading_of(old_, in_old, channel),
                           shading_of(new_, in_new, channel));
    }

    static shading_table shading_of(const run_result &run, bool present, size_t channel)
    {
        return present ? shading_channel(run.record, channel) : shading_table{};
    }

    void compare_tables(value_list list, const shading_table &old_table, const shading_table &new_table)
    {
        const auto at = [](const shading_table &table, size_t row, size_t column) {
            const std::optional<uint16_t> entry =
                row < table.rows && column < table.columns ? table.at(row, column) : std::nullopt;
            return entry ? std::optional<int64_t>(*entry) : std::nullopt;
        };
        const size_t columns = std::max(old_table.columns, new_table.columns);
        for (size_t row = 0; row < std::max(old_table.rows, new_table.rows); ++row) {
            for (size_t column = 0; column < columns; ++column)
                add(list, static_cast<uint32_t>(row << row_shift | column), at(old_table, row, column),
                    at(new_table, row, column));
        }
    }

    // Bytes that no value above shows.
    void compare_unnamed(const block_layout &block)
    {
        const size_t end = std::min<size_t>({end_of(block), old_.record.bytes_used, new_.record.bytes_used});
        std::vector<bool> named(sizeof(aic_record));
        const auto name = [&](size_t start, size_t size) {
            std::fill_n(named.begin() + static_cast<ptrdiff_t>(start), size, true);
        };
        name(block.offset + sizeof(uint32_t), sizeof(uint32_t));
        for (const run_result *run : {&old_, &new_}) {
            for (const field &described : block.fields)
                name(described.offset, used_count(run->record, block, described) * element_size(described.type));
            for (size_t channel = 0; has_shading_tables(block) && channel < shading_channels; ++channel) {
                const std::span entries = shading_channel(run->record, channel).entries;
                if (!entries.empty())
                    name(static_cast<size_t>(reinterpret_cast<const uint8_t *>(entries.data()) - bytes_of(run->record)),
                         entries.size_bytes());
            }
        }
        for (size_t at = block.offset; at < end; ++at) {
            if (!named[at])
                add({value_list::record_bytes, 0}, static_cast<uint32_t>(at), bytes_of(old_.record)[at],
                    bytes_of(new_.record)[at]);
        }
    }

    // Of records of one name, one after the other.
    static std::map<uint32_t, values> makernote_values(const run_result &run)
    {
        std::map<uint32_t, values> all;
        for (const makernote_record &record : read_makernote("makernote", run.makernote).records) {
            const values list = record.values();
            values &known = all[record.name];
            known.insert(known.end(), list.begin(), list.end());
        }
        return all;
    }

    const run_result &old_;
    const run_result &new_;
    std::vector<value_pair> &found_;
};

// What makernote_record_name() tells begins with the name of a block where the record is about one.
const block_layout *told_block(std::string_view content)
{
    const std::string_view word = content.substr(0, content.find_first_of(" ,:"));
    const auto found = std::ranges::find(record_blocks(), word, &block_layout::name);
    return found != record_blocks().end() ? &*found : nullptr;
}

} // namespace

std::string value_list::name() const
{
    switch (part) {
    case whole_record: return "bytes_used";
    case record_bytes: return "bytes without a name";
    case makernote: {
        const auto kind = std::ranges::find(makernote_kinds(), field, &makernote_kind::number);
        return kind != makernote_kinds().end() ? fmt::format("makernote.{}.value", kind->name)
                                               : fmt::format("makernote.{}.value", field);
    }
    case makernote_bytes: return "bytes of the makernote without a name";
    default: break;
    }
    const block_layout &owner = record_blocks()[part];
    const size_t tables = first_field + owner.fields.size();
    if (field == size_field)
        return fmt::format("{}.size", owner.name);
    if (field >= tables)
        return fmt::format("{}.tables[{}]", owner.name, field - tables);
    return fmt::format("{}.{}", owner.name, owner.fields[field - first_field].name);
}

std::string value_list::index_text(uint32_t index) const
{
    if (part == whole_record)
        return "";
    if (part >= record_blocks().size())
        return brackets(index);
    const block_layout &owner = record_blocks()[part];
    if (field >= first_field + owner.fields.size())
        return brackets(index >> row_shift) + brackets(index & ((1u << row_shift) - 1));
    const bool is_list = field != size_field && owner.fields[field - first_field].is_list;
    return is_list ? brackets(index) : "";
}

const block_layout *value_list::block() const
{
    if (part < record_blocks().size())
        return &record_blocks()[part];
    return part == makernote ? told_block(makernote_record_name(field)) : nullptr;
}

void find_differences(const run_result &old_run, const run_result &new_run, std::vector<value_pair> &found)
{
    found.clear();
    difference_finder finder(old_run, new_run, found);
    const record_snapshot &old_record = old_run.record;
    const record_snapshot &new_record = new_run.record;
    if (old_record.bytes_used != new_record.bytes_used ||
        std::memcmp(&old_record.record, &new_record.record, sizeof old_record.record) != 0)
        finder.compare_records();
    finder.compare_makernotes();
}

} // namespace qz::desk
