#include "value_rows.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

namespace qz::tool {

namespace {

// Fields of more rows than this are abbreviated.
constexpr size_t short_rows = 4;
constexpr std::string_view indent = "       ";

using text_output = std::back_insert_iterator<std::string>;

// Rows of numbers in columns of one width, each row after the index of its first value.
class row_printer {
  public:
    row_printer(std::string &text, std::string_view name, bool indexed) : text_(text), name_(name), indexed_(indexed) {}

    void row(size_t index, const std::vector<int64_t> &values, size_t width)
    {
        start(indexed_ ? fmt::format("{}:", index) : "");
        for (const int64_t value : values)
            fmt::format_to(text_output(text_), " {:>{}}", value, width);
        text_ += '\n';
    }

    void note(std::string_view text)
    {
        start("");
        fmt::format_to(text_output(text_), " {}\n", text);
    }

  private:
    void start(std::string_view label)
    {
        fmt::format_to(text_output(text_), "{}{:<16}{:>5}", indent, name_, label);
        name_ = "";
    }

    std::string &text_;
    std::string_view name_;
    bool indexed_;
};

size_t widest(const std::vector<int64_t> &values)
{
    size_t width = 1;
    for (const int64_t value : values)
        width = std::max(width, fmt::formatted_size("{}", value));
    return width;
}

} // namespace

void print_rows(std::string &text, std::string_view name, const std::vector<int64_t> &values, size_t columns, bool all)
{
    const size_t rows = (values.size() + columns - 1) / columns;
    const size_t width = widest(values);
    row_printer printer(text, name, rows > 1);
    for (size_t row = 0; row < rows; ++row) {
        if (!all && rows > short_rows && row == 1) {
            printer.note(fmt::format("... {} values, --all shows them", values.size()));
            row = rows - 1;
        }
        const auto first = values.begin() + static_cast<ptrdiff_t>(row * columns);
        const auto last = row + 1 == rows ? values.end() : first + static_cast<ptrdiff_t>(columns);
        printer.row(row * columns, std::vector(first, last), width);
    }
}

} // namespace qz::tool
