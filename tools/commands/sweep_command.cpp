#include <algorithm>
#include <charconv>
#include <cstring>
#include <deque>
#include <future>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/sweep/plan.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/base/progress.h"
#include "tools/commands/commands.h"

namespace qz::tool {

using namespace desk;

namespace {

// Rows that are computed at a time by one processor: some hundredths of a second.
constexpr uint64_t chunk_rows = 1024;

// Rows as text.
class row_text {
  public:
    row_text(const sweep_plan &plan, bool json) : plan_(plan), json_(json)
    {
        for (const sweep_range &range : plan.ranges())
            add_name(range.varied.name);
        for (const sweep_column &column : plan.columns())
            add_name(column.name);
    }

    std::string header() const { return fmt::format("{}\n", fmt::join(names_, "")); }

    void add(const record_snapshot &snapshot)
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
    }

    std::string take() { return std::exchange(text_, {}); }

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

    const sweep_plan &plan_;
    bool json_;
    std::vector<std::string> names_;
    std::string text_;
};

// What one thread computes with: nothing is shared.
class sweep_worker {
  public:
    sweep_worker(const sweep_options &options, scene setup, byte_buffer container)
        : setup_(std::move(setup)), container_(std::move(container)), plan_(options.choice, setup_, container_),
          session_(container_, tuning_name(options.inputs), setup_), text_(plan_, options.format == "jsonl")
    {}
    sweep_worker(const sweep_worker &) = delete;
    sweep_worker &operator=(const sweep_worker &) = delete;

    const row_span &rows() const { return plan_.rows(); }
    std::string header() const { return text_.header(); }

    std::string compute(uint64_t first, uint64_t last)
    {
        for (uint64_t row = first; row < last; ++row)
            text_.add(plan_.compute(row, session_));
        return text_.take();
    }

  private:
    scene setup_;
    byte_buffer container_;
    sweep_plan plan_;
    isp_session session_;
    row_text text_;
};

size_t jobs_of(const sweep_options &options, uint64_t rows)
{
    const uint64_t wanted = options.jobs.value_or(std::max(1u, std::thread::hardware_concurrency()));
    return static_cast<size_t>(std::clamp<uint64_t>((rows + chunk_rows - 1) / chunk_rows, 1, wanted));
}

// Every row in order, whatever number of workers compute them.
void write_rows(std::deque<sweep_worker> &workers, const row_span &rows, output_file &output, progress_line &progress)
{
    std::deque<std::future<std::string>> under_way;
    uint64_t next = rows.first;
    for (uint64_t done = rows.first; done < rows.last; done = std::min(done + chunk_rows, rows.last)) {
        while (next < rows.last && under_way.size() < workers.size()) {
            sweep_worker &worker = workers[static_cast<size_t>((next - rows.first) / chunk_rows % workers.size())];
            const uint64_t end = std::min(next + chunk_rows, rows.last);
            under_way.push_back(
                std::async(std::launch::async, [&worker, next, end] { return worker.compute(next, end); }));
            next = end;
        }
        output.write(under_way.front().get());
        under_way.pop_front();
        progress.update(std::min(done + chunk_rows, rows.last) - rows.first);
    }
}

} // namespace

int sweep(const sweep_options &options)
{
    if (options.no_header && options.format != "csv")
        throw usage_error("--no-header: found JSON lines, expected CSV, which has a header");
    expect_one_standard_input(options.inputs);
    const scene setup = load_scene(options.inputs);
    const byte_buffer container = load_container(options.inputs);
    std::deque<sweep_worker> workers;
    workers.emplace_back(options, setup, container);
    const row_span rows = workers.front().rows();
    while (workers.size() < jobs_of(options, rows.last - rows.first))
        workers.emplace_back(options, setup, container);

    output_file output(options.output, source_files(options.inputs));
    progress_line progress("rows", rows.last - rows.first, options.output);
    if (options.format == "csv" && rows.leads && !options.no_header)
        output.write(workers.front().header());
    write_rows(workers, rows, output, progress);
    output.finish();
    return exit_success;
}

} // namespace qz::tool
