// How the program ends.
#pragma once

#include <stdexcept>

namespace qz::tool {

constexpr int exit_success = 0;
constexpr int exit_failure = 1; // a file or its contents are wrong, or the answer is no
constexpr int exit_usage = 2;
constexpr int exit_closed_pipe = 141; // what a shell reports of a program that SIGPIPE ended

// Wrong use of the command line that its grammar alone does not show.
class usage_error : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

} // namespace qz::tool
