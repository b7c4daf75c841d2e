// What went wrong with a file the program reads or writes.
#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace qz::tool {

// Ends the command with exit code 1 after printing "qz-isp: FILE: what".
class file_error : public std::runtime_error {
  public:
    file_error(std::string_view file, std::string_view what);
    // where: line and column, byte offset or field path; empty for the file as a whole.
    file_error(std::string_view file, std::string_view where, std::string_view found, std::string_view expected);
};

// Wrong use of the command line that its grammar alone does not show: exit code 2.
class usage_error : public std::runtime_error {
  public:
    using std::runtime_error::runtime_error;
};

// The reader of a pipe has seen enough: ends the command without a message.
class closed_pipe : public std::runtime_error {
  public:
    closed_pipe() : std::runtime_error("closed pipe") {}
};

} // namespace qz::tool
