// Files in and out; "-" is standard input or output.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "desk/base/bytes.h"

namespace qz::tool {

// The reader of a pipe has seen enough: ends the command without a message.
struct closed_pipe {};

struct file_closer {
    void operator()(FILE *file) const; // leaves standard input and output open
};
using file_handle = std::unique_ptr<FILE, file_closer>;

// What error messages call the file.
std::string input_name(const std::string &file);

desk::byte_buffer read_file(const std::string &file);

// A file written piece by piece.
class output_file {
  public:
    explicit output_file(const std::string &file);
    void write(desk::byte_view bytes);
    void write(std::string_view text) { write({reinterpret_cast<const uint8_t *>(text.data()), text.size()}); }
    void finish(); // everything has been written when it returns

  private:
    [[noreturn]] void fail(const char *what) const;

    std::string name_;
    file_handle handle_;
};

// The whole of a file at once.
void write_file(const std::string &file, desk::byte_view bytes);
void write_text(const std::string &file, std::string_view text);

} // namespace qz::tool
