#include <algorithm>
#include <cstring>
#include <deque>
#include <functional>
#include <future>
#include <nlohmann/json.hpp>
#include <thread>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "desk/sweep/plan.h"
#include "desk/sweep/plot.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/base/progress.h"
#include "tools/base/report_page.h"
#include "tools/commands/commands.h"
#include "tools/text/cells.h"
#include "tools/text/names_text.h"

namespace qz::tool {

using namespace desk;

namespace {

// Rows that are computed at a time by one processor: some hundredths of a second.
constexpr uint64_t chunk_rows = 1024;

// Rows as text.
class row_text {
  public:
    row_text(const sweep_plan &plan, bool json)
        : plan_(plan), json_(json), append_text_(json ? append_json : append_csv), tells_names_(has_names(plan))
    {
        if (plan.tells_frames())
            add_name("frame");
        if (tells_names_)
            add_name("name");
        for (const sweep_range &range : plan.ranges())
            add_name(range.varied.name);
        for (const sweep_column &column : plan.columns())
            add_name(column.name);
    }

    std::string header() const { return fmt::format("{}\n", fmt::join(names_, "")); }

    void add(uint64_t row, const column_source &values)
    {
        size_t place = 0;
        if (plan_.tells_frames())
            add_frame(plan_.frame_of(row), place);
        for (const sweep_range &range : plan_.ranges_of(row)) {
            start_value(place++);
            visit_type(range.varied.type, [&](auto typed) {
                std::memcpy(&typed, range.varied.place, sizeof typed);
                append_number(text_, typed);
            });
        }
        for (const sweep_column &column : plan_.columns()) {
            start_value(place++);
            append_cell(text_, column_value(column, values), append_text_, json_ ? "null" : "");
        }
        text_ += json_ ? "}\n" : "\n";
    }

    std::string take() { return std::exchange(text_, {}); }

  private:
    static bool has_names(const sweep_plan &plan)
    {
        bool found = false;
        for (size_t frame = plan.frames().first; plan.tells_frames() && frame < plan.frames().last; ++frame)
            found = found || !plan.frame_name(frame).empty();
        return found;
    }

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

    void add_frame(size_t frame, size_t &place)
    {
        start_value(place++);
        append_number(text_, frame);
        if (!tells_names_)
            return;
        const std::string &name = plan_.frame_name(frame);
        start_value(place++);
        append_cell(text_, name.empty() ? cell() : cell(std::string_view(name)), append_text_, json_ ? "null" : "");
    }

    const sweep_plan &plan_;
    bool json_;
    void (*append_text_)(std::string &, std::string_view);
    bool tells_names_;
    std::vector<std::string> names_;
    std::string text_;
};

bool is_json(const sweep_options &options)
{
    return options.format == "jsonl";
}

bool writes_table(const sweep_options &options)
{
    return !options.plot || options.output || options.format;
}

// Rows one after the other.
struct computed_rows {
    std::string text;
    plotted_rows plotted;
};

// What one thread computes with: nothing is shared.
class sweep_worker {
  public:
    sweep_worker(const sweep_options &options, const scene &setup, const byte_buffer &container)
        : plan_(options.choice, setup, container, tuning_name(options.inputs)), text_(plan_, is_json(options)),
          writes_table_(writes_table(options)), plots_(options.plot.has_value())
    {}
    sweep_worker(const sweep_worker &) = delete;
    sweep_worker &operator=(const sweep_worker &) = delete;

    const sweep_plan &plan() const { return plan_; }
    std::string header() const { return text_.header(); }

    computed_rows compute(uint64_t first, uint64_t last)
    {
        computed_rows made = {{}, plotted_rows(plots_ ? plan_.columns().size() : 0)};
        for (uint64_t row = first; row < last; ++row) {
            const column_source &values = plan_.compute(row);
            if (writes_table_)
                text_.add(row, values);
            if (plots_)
                made.plotted.add(plan_.columns(), values);
        }
        made.text = text_.take();
        return made;
    }

  private:
    sweep_plan plan_;
    row_text text_;
    bool writes_table_;
    bool plots_;
};

size_t jobs_of(const sweep_options &options, uint64_t rows)
{
    const uint64_t wanted = options.jobs.value_or(std::max(1u, std::thread::hardware_concurrency()));
    return static_cast<size_t>(std::clamp<uint64_t>((rows + chunk_rows - 1) / chunk_rows, 1, wanted));
}

// Hands over every row in order, whatever number of workers compute them.
void compute_rows(std::deque<sweep_worker> &workers, const row_span &rows,
                  const std::function<void(computed_rows &&, uint64_t done)> &take)
{
    std::deque<std::future<computed_rows>> under_way;
    uint64_t next = rows.first;
    for (uint64_t done = rows.first; done < rows.last; done = std::min(done + chunk_rows, rows.last)) {
        while (next < rows.last && under_way.size() < workers.size()) {
            sweep_worker &worker = workers[static_cast<size_t>((next - rows.first) / chunk_rows % workers.size())];
            const uint64_t end = std::min(next + chunk_rows, rows.last);
            under_way.push_back(
                std::async(std::launch::async, [&worker, next, end] { return worker.compute(next, end); }));
            next = end;
        }
        take(under_way.front().get(), std::min(done + chunk_rows, rows.last) - rows.first);
        under_way.pop_front();
    }
}

void expect_fitting_options(const sweep_options &options)
{
    if (options.no_header && is_json(options))
        throw usage_error("--no-header: found JSON lines, expected CSV, which has a header");
    if (options.plot && writes_table(options) && *options.plot == options.output.value_or("-"))
        throw usage_error(fmt::format("--plot: found {} for the rows too, expected another file", *options.plot));
    expect_one_standard_input(options.inputs);
    if (options.plot)
        expect_page(built_in_page, "sweep --plot");
}

void write_plot(const sweep_options &options, const sweep_plan &plan, const plotted_rows &plotted)
{
    json data = {{"page", "sweep"},
                 {"tuning", tuning_name(options.inputs)},
                 {"scene", scene_name(options.inputs)},
                 {"settings", options.choice.settings}};
    if (!plan.tells_frames())
        data["frame"] = {plan.frames().first, plan.frame_name(plan.frames().first)};
    data.update(plotted.data(plan));
    write_text(*options.plot, filled(built_in_page, data), source_files(options.inputs));
}

} // namespace

int sweep(const sweep_options &options)
{
    if (!options.list && options.choice.over.empty())
        throw usage_error("sweep: --over is required\nRun with --help for more information.");
    expect_fitting_options(options);
    const scene setup = load_scene(options.inputs);
    const byte_buffer container = load_container(options.inputs);
    if (options.list) {
        write_text(options.output.value_or("-"), names_text(setup, container), source_files(options.inputs));
        return exit_success;
    }
    std::deque<sweep_worker> workers;
    workers.emplace_back(options, setup, container);
    const row_span rows = workers.front().plan().rows();
    if (options.plot)
        expect_plottable(workers.front().plan());
    while (workers.size() < jobs_of(options, rows.last - rows.first))
        workers.emplace_back(options, setup, container);

    const sweep_plan &plan = workers.front().plan();
    const std::string target = options.output.value_or("-");
    std::optional<output_file> output;
    if (writes_table(options))
        output.emplace(target, source_files(options.inputs));
    progress_line progress("rows", rows.last - rows.first, output ? target : *options.plot);
    if (output && !is_json(options) && rows.leads && !options.no_header)
        output->write(workers.front().header());
    plotted_rows plotted(options.plot ? plan.columns().size() : 0);
    compute_rows(workers, rows, [&](computed_rows &&made, uint64_t done) {
        if (output)
            output->write(made.text);
        plotted.append(std::move(made.plotted));
        progress.update(done);
    });
    if (output)
        output->finish();
    if (options.plot)
        write_plot(options, plan, plotted);
    return exit_success;
}

} // namespace qz::tool
