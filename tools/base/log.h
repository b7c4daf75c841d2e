// What the program shows of the library's log.
#pragma once

namespace qz::tool {

enum class log_shown { nothing, errors, everything };

// For the rest of the program; errors where it is not called.
void show_log(log_shown shown);

// While it lives, errors are not shown either, unless everything is: what they tell is told otherwise.
class quiet_log {
  public:
    quiet_log();
    ~quiet_log();
    quiet_log(const quiet_log &) = delete;
    quiet_log &operator=(const quiet_log &) = delete;

  private:
    log_shown before_;
};

} // namespace qz::tool
