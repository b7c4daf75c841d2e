#include "bench/compare.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <utility>

#include <benchmark/benchmark.h>

namespace bench {

namespace {

constexpr int rounds = 41;
constexpr double shortest_batch = 200e-6; // seconds: far above the clock's resolution

struct result {
    std::string routine, size, peer;
    double ours, ratio, at_most; // ours in seconds
};

std::vector<result> &results()
{
    static std::vector<result> all;
    return all;
}

// One contender: as many calls a batch as make the batch long enough, and the time of one call in each round.
class contender {
  public:
    explicit contender(const work &run) : run_(run)
    {
        batch_seconds(1);
        while (batch_seconds(calls_) < shortest_batch)
            calls_ *= 2;
    }

    double time()
    {
        samples_.push_back(batch_seconds(calls_) / static_cast<double>(calls_));
        return samples_.back();
    }

    double median()
    {
        const auto middle = samples_.begin() + static_cast<std::ptrdiff_t>(samples_.size() / 2);
        std::nth_element(samples_.begin(), middle, samples_.end());
        return *middle;
    }

  private:
    double batch_seconds(long calls) const
    {
        const auto start = std::chrono::steady_clock::now();
        for (long i = 0; i < calls; ++i)
            run_();
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    }

    const work &run_;
    long calls_ = 1;
    std::vector<double> samples_;
};

struct comparison {
    std::string routine, size;
    work ours;
    std::vector<peer> peers;

    void operator()(benchmark::State &state) const
    {
        std::vector<contender> contenders = {contender(ours)};
        for (const peer &other : peers)
            contenders.emplace_back(other.run);

        size_t first = 0; // each contender leads a round in its turn
        for (auto _ : state) {
            for (size_t i = 0; i < contenders.size(); ++i) {
                const size_t turn = (first + i) % contenders.size();
                const double seconds = contenders[turn].time();
                if (turn == 0)
                    state.SetIterationTime(seconds);
            }
            ++first;
        }

        const double own = contenders[0].median();
        for (size_t i = 0; i < peers.size(); ++i) {
            const double ratio = own / contenders[i + 1].median();
            state.counters["/" + peers[i].name] = ratio;
            results().push_back({routine, size, peers[i].name, own, ratio, peers[i].at_most});
        }
        if (peers.empty())
            results().push_back({routine, size, "-", own, 0.0, no_target});
    }
};

} // namespace

void compare(const std::string &routine, const std::string &size, work ours, std::vector<peer> peers)
{
    benchmark::RegisterBenchmark((routine + '/' + size).c_str(),
                                 comparison{routine, size, std::move(ours), std::move(peers)})
        ->UseManualTime()
        ->Iterations(rounds)
        ->Unit(benchmark::kMicrosecond);
}

void print_ratios()
{
    std::printf("\n| %-39s | %-21s | %-31s | ours, us | ratio | target |\n", "routine", "size", "peer");
    std::printf("|---|---|---|---|---|---|\n");
    for (const result &r : results()) {
        const std::string quoted = '`' + r.routine + '`';
        std::printf("| %-39s | %-21s | %-31s | %8.3f |", quoted.c_str(), r.size.c_str(), r.peer.c_str(), r.ours * 1e6);
        std::printf(r.ratio > 0.0 ? " %5.2f |" : " – |", r.ratio);
        std::printf(r.at_most > 0.0 ? " %.2f%s |\n" : " – |\n", r.at_most, r.ratio > r.at_most ? " missed" : "");
    }
}

} // namespace bench
