#include <algorithm>
#include <charconv>
#include <span>

#include <fmt/format.h>

#include "commands.h"
#include "error.h"
#include "progress.h"
#include "session.h"
#include "sweep_columns.h"
#include "sweep_ranges.h"

namespace qz::tool {

namespace {

constexpr size_t chunk_size = 65536;

struct row_span {
    uint64_t first;
    uint64_t last; // one past the last row
    bool leads;    // holds the beginning of the whole
};

// Shards are runs of rows that differ in length by one row at most.
row_span shard_rows(const std::optional<std::string> &shard, uint64_t rows)
{
    if (!shard)
        return {0, rows, true};
    uint64_t number = 0;
    uint64_t count = 0;
    const char *end = shard->data() + shard->size();
    const auto [slash, error] = std::from_chars(shard->data(), end, number);
    const bool good = error == std::errc() && slash != end && *slash == '/' &&
                      std::from_chars(slash + 1, end, count).ptr == end && number >= 1 && number <= count;
    if (!good)
        throw usage_error(fmt::format("--shard: found \"{}\", expected I/N, shard I of N with I from 1 to N", *shard));
    const auto start = [&](uint64_t before) { return rows / count * before + std::min(rows % count, before); };
    return {start(number - 1), start(number), number == 1};
}

// Rows as text, written in chunks.
class row_writer {
  public:
    row_writer(const sweep_options &options, const std::vector<sweep_range> &ranges,
               const std::vector<sweep_column> &columns)
        : ranges_(ranges), columns_(columns), json_(options.format == "jsonl"), output_(options.output)
    {
        for (const sweep_range &range : ranges)
            add_name(range.name);
        for (const sweep_column &column : columns)
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
        for (const sweep_range &range : ranges_) {
            start_value(place++);
            visit_type(range.type, [&](auto typed) {
                std::memcpy(&typed, range.input, sizeof typed);
                add_number(typed);
            });
        }
        for (const sweep_column &column : columns_) {
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

    const std::vector<sweep_range> &ranges_;
    const std::vector<sweep_column> &columns_;
    bool json_;
    output_file output_;
    std::vector<std::string> names_;
    std::string text_;
};

frame_inputs &chosen_frame(scene &inputs, const std::optional<std::string> &choice)
{
    const auto [first, last] = chosen_frames(inputs, choice);
    if (last - first != 1)
        throw usage_error(fmt::format("--frame: found {} frames, expected one for a sweep", last - first));
    return inputs.frames[first];
}

} // namespace

int sweep(const sweep_options &options)
{
    if (options.no_header && options.format != "csv")
        throw usage_error("--no-header: found JSON lines, expected CSV, which has a header");
    expect_one_standard_input(options.inputs);
    scene setup = load_scene(options.inputs);
    frame_inputs &inputs = chosen_frame(setup, options.frame);
    const sweep_ranges ranges(options.over, inputs);
    const std::vector<sweep_column> columns = choose_columns(options.fields);
    const row_span rows = shard_rows(options.shard, ranges.rows());
    isp_session session(load_container(options.inputs), tuning_name(options.inputs), setup);

    row_writer writer(options, ranges.ranges(), columns);
    progress_line progress("rows", rows.last - rows.first, options.output);
    if (options.format == "csv" && rows.leads && !options.no_header)
        writer.header();
    for (uint64_t row = rows.first; row < rows.last; ++row) {
        ranges.apply(row);
        session.forget_frames();
        writer.row(session.run(inputs));
        progress.update(row + 1 - rows.first);
    }
    writer.finish();
    return exit_success;
}

} // namespace qz::tool
