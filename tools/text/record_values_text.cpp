#include "tools/text/record_values_text.h"

#include <algorithm>
#include <iterator>
#include <vector>

#include <fmt/format.h>

#include "desk/tuning/source_names.h"
#include "desk/tuning/value_by_name.h"
#include "tools/text/lines.h"

namespace qz::tool {

using namespace desk;

namespace {

// Rows of more values are no table: their fields stand one below the other.
constexpr size_t widest_table = 16;

size_t values_in(std::span<const field> fields)
{
    size_t count = 0;
    for (const field &described : fields)
        count += described.count;
    return count;
}

// Lines of cells, the first line of names; every column as wide as its widest cell.
std::string table_text(const std::vector<std::vector<std::string>> &lines)
{
    std::vector<size_t> widths(lines.front().size());
    for (const std::vector<std::string> &line : lines)
        for (size_t i = 0; i < line.size(); ++i)
            widths[i] = std::max(widths[i], line[i].size());
    std::string text;
    for (const std::vector<std::string> &line : lines) {
        text += line_indent;
        for (size_t i = 0; i < line.size(); ++i)
            fmt::format_to(std::back_inserter(text), "{}{:>{}}", i > 0 ? "  " : "", line[i], widths[i]);
        text += '\n';
    }
    return text;
}

std::string rows_table(byte_view rows, size_t size, std::span<const field> fields)
{
    std::vector<std::vector<std::string>> lines(1);
    for (const field &described : fields)
        for (size_t i = 0; i < described.count; ++i)
            lines[0].push_back(element_name(described, i));
    for (size_t at = 0; at < rows.size(); at += size) {
        std::vector<std::string> line;
        for (const field &described : fields)
            for (size_t i = 0; i < described.count; ++i)
                line.push_back(std::to_string(integer_at(described, &rows[at], i)));
        lines.push_back(std::move(line));
    }
    return table_text(lines);
}

std::string fields_text(std::span<const field> fields, const uint8_t *base)
{
    std::string text;
    for (const field &described : fields) {
        std::vector<int64_t> values;
        for (size_t i = 0; i < described.count; ++i)
            values.push_back(integer_at(described, base, i));
        text += number_lines(described.name, values, described.columns, true);
    }
    return text;
}

std::string rows_text(byte_view rows, size_t size, std::span<const field> fields)
{
    if (rows.empty())
        return "";
    if (values_in(fields) <= widest_table)
        return rows_table(rows, size, fields);
    std::string text;
    for (size_t at = 0; at < rows.size(); at += size)
        text += fmt::format("{}row {}\n", line_indent, at / size) + fields_text(fields, &rows[at]);
    return text;
}

std::string bytes_text(std::string_view label, byte_view bytes)
{
    constexpr size_t in_line = 32;
    std::string text;
    for (size_t at = 0; at < bytes.size(); at += in_line)
        text += labelled_line(at == 0 ? label : "", hex_text(bytes.subspan(at, std::min(in_line, bytes.size() - at))));
    return text;
}

// What a number in a selection rule stands for.
template <size_t count>
std::string word(const std::string_view (&names)[count], uint16_t number)
{
    return number >= 1 && number <= count ? std::string(names[number - 1u]) : std::to_string(number);
}

// The parts of a record from the front: each is taken off the bytes that are left.
class contents_printer {
  public:
    explicit contents_printer(const tuning_record &record) : record_(record), rest_(record.body) {}

    std::string print()
    {
        if (record_.id == rules_id)
            print_rules();
        else if (record_.place && record_.place->kind != nullptr)
            print_kind(*record_.place->kind);
        return text_ + bytes_text("bytes", rest_);
    }

  private:
    byte_view take(size_t size)
    {
        const byte_view taken = rest_.first(std::min(size, rest_.size()));
        rest_ = rest_.subspan(taken.size());
        return taken;
    }

    void print_kind(const record_kind &kind)
    {
        if (kind.layout == ISP_LAYOUT_VALUES && rest_.size() >= kind.size)
            text_ += fields_text(kind.fields, take(kind.size).data());
        if (kind.has_rows() && stated_rows(record_))
            print_rows(kind);
    }

    void print_rows(const record_kind &kind)
    {
        take(kind.start - record_header_size);
        const auto stated = static_cast<uint64_t>(std::max<int64_t>(0, *stated_rows(record_)));
        const auto rows = static_cast<size_t>(std::min<uint64_t>(stated, rest_.size() / kind.size));
        text_ += rows_text(take(rows * kind.size), kind.size, kind.fields);
        if (kind.layout == ISP_LAYOUT_ROWS_AND_MORE && rows == stated)
            print_fringe_tail(rows);
    }

    void print_fringe_tail(size_t rows)
    {
        if (record_.version < ISP_FRINGE_COUNT2_SINCE || rest_.size() < sizeof(uint16_t))
            return;
        text_ += number_lines("count2", {read_le<uint16_t>(take(sizeof(uint16_t)), 0)}, 1, true);
        constexpr size_t size = sizeof(isp_fringe_control_extra_row);
        if (record_.version >= ISP_FRINGE_EXTRA_SINCE && rest_.size() >= rows * size && rows > 0)
            text_ += fmt::format("{}extra\n", line_indent) + rows_text(take(rows * size), size, fringe_extra_row());
    }

    void print_rules()
    {
        const std::optional<int64_t> count = stated_rows(record_);
        if (!count || static_cast<uint64_t>(*count) * rule_size + rules_start > record_.size())
            return;
        take(rules_start - record_header_size);
        std::vector<std::vector<std::string>> lines = {{"kind", "op", "threshold", "set_index"}};
        for (int64_t i = 0; i < *count; ++i) {
            const auto rule = value_at<isp_selection_rule>(take(rule_size).data(), 0);
            lines.push_back({word(rule_kinds, rule.kind), word(rule_ops, rule.op), fmt::format("{}", rule.threshold),
                             std::to_string(rule.set_index)});
        }
        text_ += table_text(lines);
    }

    const tuning_record &record_;
    byte_view rest_;
    std::string text_;
};

void write_list(const record_list &list, unsigned set_index, const text_sink &sink)
{
    for (const tuning_record &record : list) {
        if (record.is_set_container)
            write_list(record.nested, record.id - unsigned{set_container_base}, sink);
        else
            sink(record_values_text(record, record_name(record, set_index)));
    }
}

} // namespace

std::string record_values_text(const tuning_record &record, const std::string &name)
{
    const std::optional<int64_t> rows = stated_rows(record);
    return fmt::format("{}: offset {}, id {}, version {}{}\n", name, record.offset, record.id, record.version,
                       rows ? fmt::format(", {} {}", *rows, record.id == rules_id ? "rules" : "rows") : "") +
           contents_printer(record).print();
}

void write_values_text(const tuning_container &container, const text_sink &sink)
{
    write_list(container.list, 0, sink);
}

} // namespace qz::tool
