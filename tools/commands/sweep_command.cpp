#include "tools/commands/sweep_command.h"

#include <charconv>
#include <cstring>

#include <fmt/format.h>

#include "desk/sweep/plan.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/base/progress.h"

namespace qz::tool {

using namespace desk;

namespace {

constexpr size_t chunk_size = 65536;

// Rows as text, written in chunks.
class row_writer {
  public:
    row_writer(const sweep_options &options, const sweep_plan &plan)
        : plan_(plan), json_(options.format == "jsonl"), output_(options.output, source_files(options.inputs))
    {
        for (const sweep_range &range : plan.ranges())
            add_name(range.varied.name);
        for (const sweep_column &column : plan.columns())
            add_name(column.name);
    }

    void header()
    {
        for (const std::string &name : names_)
            text_ += name;
        text_ += '\n';
    }

    void row(const record_snapshot &snapshot)
    {
        size_t place = 0;
        for (const sweep_range &range : plan_.ranges()) {
            start_value(place++);
            visit_type(range.varied.type, [&](auto typed) {
                std::memcpy(&typed, range.varied.place, sizeof typed);
                add_number(typed);
            });
        }
        for (const sweep_column &column : plan_.columns()) {
            start_value(place++);
            if (const std::optional<int64_t> value = column_value(column, snapshot))
                add_number(*value);
            else if (json_)
                text_ += "null";
        }
        text_ += json_ ? "}\n" : "\n";
        if (text_.size() >= chunk_size)
            write();
    }

    void finish()
    {
        write();
        output_.finish();
    }

  private:
    // What stands before the value of a column in every row; names need no quotes in CSV, nor escapes in JSON.
    void add_name(std::string_view name)
    {
        const bool first = names_.empty();
        names_.push_back(json_ ? fmt::format("{}\"{}\":", first ? '{' : ',', name)
                               : fmt::format("{}{}", first ? "" : ",", name));
    }

    void start_value(size_t place)
    {
        if (json_)
            text_ += names_[place];
        else if (place > 0)
            text_ += ',';
    }

    // The shortest text that reads back as the same number.
    template <typename Number>
    void add_number(Number number)
    {
        char digits[32];
        text_.append(digits, std::to_chars(digits, std::end(digits), number).ptr);
    }

    void write()
    {
        output_.write(text_);
        text_.clear();
    }

    const sweep_plan &plan_;
    bool json_;
    output_file output_;
    std::vector<std::string> names_;
    std::string text_;
};

} // namespace

int sweep(const sweep_options &options)
{
    if (options.no_header && options.format != "csv")
        throw usage_error("--no-header: found JSON lines, expected CSV, which has a header");
    expect_one_standard_input(options.inputs);
    scene scene = load_scene(options.inputs);
    byte_buffer container = load_container(options.inputs);
    const sweep_plan plan(options.choice, scene, container);
    isp_session session(container, tuning_name(options.inputs), scene);

    row_writer writer(options, plan);
    const auto [first, last, leads] = plan.rows();
    progress_line progress("rows", last - first, options.output);
    if (options.format == "csv" && leads && !options.no_header)
        writer.header();
    for (uint64_t row = first; row < last; ++row) {
        writer.row(plan.compute(row, session));
        progress.update(row + 1 - first);
    }
    writer.finish();
    return exit_success;
}

} // namespace qz::tool
