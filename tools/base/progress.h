// How far a long command is, on a line of the terminal that is gone in the end.
#pragma once

#include <chrono>
#include <cstdint>
#include <string_view>

namespace qz::tool {

// Printed on standard error only when that is a terminal and the command's output does not go to one too.
class progress_line {
  public:
    // what is counted, for example "rows"; file: where the output goes, "-" for standard output.
    progress_line(std::string_view what, uint64_t total, std::string_view file);
    ~progress_line() { erase(); }
    progress_line(const progress_line &) = delete;
    progress_line &operator=(const progress_line &) = delete;

    void update(uint64_t done)
    {
        if (shown_)
            draw(done);
    }

  private:
    using clock = std::chrono::steady_clock;
    static constexpr auto redraw_time = std::chrono::milliseconds(200);

    void draw(uint64_t done);
    void erase();

    std::string_view what_;
    uint64_t total_;
    bool shown_;
    bool drawn_ = false;
    clock::time_point start_ = clock::now();
    clock::time_point next_ = start_ + redraw_time;
};

} // namespace qz::tool
