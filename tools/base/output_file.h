// Files that commands write; "-" is standard output.
#pragma once

#include <cstdint>
#include <cstdio>
#include <string>
#include <string_view>
#include <vector>

#include "desk/base/bytes.h"
#include "tools/base/files.h"

namespace qz::tool {

// The reader of a pipe has seen enough: ends the command without a message.
struct closed_pipe {};

// A file written piece by piece, beside the one that it replaces in the end: until then, and when anything fails, what
// was there stays as it was. Pipes, devices and files in directories that take no new ones are written in place.
class output_file {
  public:
    // sources: what the command reads; fails when the file is one of them.
    explicit output_file(const std::string &file, const std::vector<std::string> &sources = {});
    ~output_file();
    output_file(const output_file &) = delete;
    output_file &operator=(const output_file &) = delete;

    void write(desk::byte_view bytes);
    void write(std::string_view text) { write({reinterpret_cast<const uint8_t *>(text.data()), text.size()}); }
    void finish(); // everything has been written when it returns

  private:
    void open_beside();
    [[noreturn]] void fail(const char *what) const;

    std::string name_;   // what messages call it
    std::string target_; // where a link leads to
    std::string beside_; // what becomes the target; empty where that is written in place
    file_handle handle_;
};

// Where the program ends without leaving its scopes.
void remove_unfinished_file();

// The whole of a file at once.
void write_file(const std::string &file, desk::byte_view bytes, const std::vector<std::string> &sources = {});
void write_text(const std::string &file, std::string_view text, const std::vector<std::string> &sources = {});

} // namespace qz::tool
