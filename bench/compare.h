// Times a routine of the library beside the nearest routines of other libraries on the same work.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace bench {

using work = std::function<void()>;

struct peer {
    std::string name;
    double at_most; // the ratio ours / peer to reach; no_target for none
    work run;
};

inline constexpr double no_target = 0.0;

// Registers one benchmark, routine/size, that runs ours and every peer in turn, round after round, so that whatever
// else the machine does meets all of them alike. Without peers it times ours alone.
void compare(const std::string &routine, const std::string &size, work ours, std::vector<peer> peers = {});

// Prints a row of a Markdown table for each comparison that ran: ratio of the medians, and the target. medians.sh takes
// what several runs printed.
void print_ratios();

} // namespace bench
