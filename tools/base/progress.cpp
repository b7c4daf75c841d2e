#include "tools/base/progress.h"

#include <cstdio>
#include <string>

#include <fmt/format.h>
#include <unistd.h>

namespace qz::tool {

namespace {

constexpr size_t bar_width = 24;

std::string time_text(double seconds)
{
    const auto whole = static_cast<uint64_t>(seconds);
    return whole < 3600 ? fmt::format("{}:{:02}", whole / 60, whole % 60)
                        : fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
}

} // namespace

progress_line::progress_line(std::string_view what, uint64_t total, std::string_view file)
    : what_(what), total_(total),
      shown_(total > 0 && isatty(STDERR_FILENO) != 0 && !(file == "-" && isatty(STDOUT_FILENO) != 0))
{}

void progress_line::draw(uint64_t done)
{
    const clock::time_point now = clock::now();
    if (now < next_ || done == 0)
        return;
    next_ = now + redraw_time;
    drawn_ = true;
    const double seconds = std::chrono::duration<double>(now - start_).count() + 1e-9;
    const double part = static_cast<double>(done) / static_cast<double>(total_);
    const double rate = static_cast<double>(done) / seconds;
    const std::string bar(static_cast<size_t>(part * bar_width), '#');
    fmt::print(stderr, "\r[{:<{}}] {:3.0f} %, {} of {} {}, {:.0f} a second, {} left\033[K", bar, bar_width, 100 * part,
               done, total_, what_, rate, time_text(seconds / part - seconds));
    static_cast<void>(std::fflush(stderr));
}

void progress_line::erase()
{
    if (drawn_)
        static_cast<void>(std::fputs("\r\033[K", stderr));
}

} // namespace qz::tool
