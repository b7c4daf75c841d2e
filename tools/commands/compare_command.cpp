#include <algorithm>
#include <chrono>
#include <deque>
#include <future>
#include <mutex>
#include <thread>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/compare/comparison.h"
#include "desk/tuning/value_by_name.h"
#include "tools/base/exit_codes.h"
#include "tools/base/inputs.h"
#include "tools/base/output_file.h"
#include "tools/base/progress.h"
#include "tools/commands/commands.h"
#include "tools/text/comparison_text.h"

namespace qz::tool {

using namespace desk;

namespace {

// Runs that are handed out at a time: some hundredths of a second.
constexpr uint64_t chunk_runs = 512;

constexpr auto progress_time = std::chrono::milliseconds(100);

struct failed_run {
    uint64_t run;
    error wrong;
};

// The runs that are still to be made, for several threads.
class open_runs {
  public:
    open_runs(uint64_t first, uint64_t last) : first_(first), next_(first), last_(last) {}

    // The next ones, from a first to one past the last; none in the end.
    std::pair<uint64_t, uint64_t> take()
    {
        const std::lock_guard lock(mutex_);
        const uint64_t start = next_;
        next_ = std::min(last_, next_ + chunk_runs);
        return {start, next_};
    }

    // All before the run have been taken: of several failed ones the earliest is found whatever the threads do.
    void stop()
    {
        const std::lock_guard lock(mutex_);
        last_ = next_;
    }

    uint64_t taken() const
    {
        const std::lock_guard lock(mutex_);
        return next_ - first_;
    }

  private:
    mutable std::mutex mutex_;
    uint64_t first_;
    uint64_t next_;
    uint64_t last_;
};

// Files of the command line, read.
struct compare_inputs {
    input_files old_files;
    input_files new_files;
    scene frames;
    byte_buffer old_container;
    byte_buffer new_container;
};

compare_inputs read_inputs(const compare_options &options)
{
    if (!options.new_tuning && options.choice.changes.empty())
        throw usage_error(fmt::format("compare: found {} and no --change, expected NEW or --change",
                                      options.old_tuning ? "one tuning" : "no tuning"));
    const std::optional<std::string> files[] = {options.old_tuning, options.new_tuning, options.scene};
    if (std::ranges::count(files, "-") > 1)
        throw usage_error("compare: found standard input for several files, expected it for one");
    compare_inputs inputs = {.old_files = {options.old_tuning, options.scene},
                             .new_files = {options.new_tuning ? options.new_tuning : options.old_tuning, options.scene},
                             .frames = {},
                             .old_container = {},
                             .new_container = {}};
    inputs.frames = load_scene(inputs.old_files);
    inputs.old_container = load_container(inputs.old_files);
    inputs.new_container = options.new_tuning ? load_container(inputs.new_files) : inputs.old_container;
    return inputs;
}

compared_side make_side(const input_files &files, const byte_buffer &container, const scene &frames,
                        const side_choice &choice)
{
    try {
        return {tuning_name(files), container, frames, choice};
    } catch (error &wrong) {
        // What one tuning has the other one may lack.
        if (!wrong.file && wrong.place.find(tuning_prefix) != std::string::npos)
            wrong.place += " in " + tuning_name(files);
        throw;
    }
}

// What one thread compares with: nothing is shared.
class compare_worker {
  public:
    compare_worker(const compare_inputs &inputs, const side_choice &choice)
        : old_side_(make_side(inputs.old_files, inputs.old_container, inputs.frames, unchanged(choice))),
          new_side_(make_side(inputs.new_files, inputs.new_container, inputs.frames, choice))
    {}

    compared_side &old_side() { return old_side_; }
    compared_side &new_side() { return new_side_; }
    const difference_tally &tally() const { return tally_; }

    std::optional<failed_run> compare(open_runs &open)
    {
        for (auto [run, end] = open.take(); run < end; std::tie(run, end) = open.take()) {
            for (; run < end; ++run) {
                try {
                    tally_.add(run, old_side_.run(run), new_side_.run(run));
                } catch (const error &wrong) {
                    open.stop();
                    return failed_run{run, wrong};
                }
            }
        }
        return std::nullopt;
    }

  private:
    static side_choice unchanged(side_choice choice)
    {
        choice.changes.clear();
        return choice;
    }

    compared_side old_side_;
    compared_side new_side_;
    difference_tally tally_;
};

// Frames go through one context in their order; rows are as many as there are processors at a time.
size_t jobs_of(const compare_options &options, const compared_side &side)
{
    if (!side.has_rows())
        return 1;
    const uint64_t wanted = options.jobs.value_or(std::max(1u, std::thread::hardware_concurrency()));
    const uint64_t chunks = (side.last() - side.first() + chunk_runs - 1) / chunk_runs;
    return static_cast<size_t>(std::clamp<uint64_t>(chunks, 1, wanted));
}

difference_tally compare_runs(std::deque<compare_worker> &workers)
{
    compared_side &side = workers.front().old_side();
    open_runs open(side.first(), side.last());
    progress_line progress(side.has_rows() ? "rows" : "frames", side.last() - side.first(), "-");
    std::vector<std::future<std::optional<failed_run>>> under_way;
    under_way.reserve(workers.size());
    for (compare_worker &worker : workers)
        under_way.push_back(std::async(std::launch::async, [&] { return worker.compare(open); }));
    std::optional<failed_run> earliest;
    for (std::future<std::optional<failed_run>> &each : under_way) {
        while (each.wait_for(progress_time) != std::future_status::ready)
            progress.update(open.taken());
        const std::optional<failed_run> failed = each.get();
        if (failed && (!earliest || failed->run < earliest->run))
            earliest = failed;
    }
    if (earliest) {
        earliest->wrong.place = place_text(side.place(earliest->run));
        throw error(earliest->wrong);
    }
    difference_tally all;
    for (const compare_worker &worker : workers)
        all.add(worker.tally());
    return all;
}

} // namespace

int compare(const compare_options &options)
{
    const compare_inputs inputs = read_inputs(options);
    std::deque<compare_worker> workers;
    workers.emplace_back(inputs, options.choice);
    while (workers.size() < jobs_of(options, workers.front().old_side()))
        workers.emplace_back(inputs, options.choice);
    const difference_tally tally = compare_runs(workers);
    compare_worker &first = workers.front();
    const comparison made = describe(tally, first.old_side(), first.new_side(), options.as_json || options.all);
    write_text("-", options.as_json ? comparison_json(made) : comparison_text(made, options.all));
    return made.is_same() ? exit_success : exit_failure;
}

} // namespace qz::tool
