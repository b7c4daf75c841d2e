// Files in and out; "-" is standard input or output.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qz::tool {

using byte_view = std::span<const uint8_t>;
using byte_buffer = std::vector<uint8_t>;

struct file_closer {
    void operator()(FILE *file) const; // leaves standard input and output open
};
using file_handle = std::unique_ptr<FILE, file_closer>;

// What error messages call the file.
std::string input_name(const std::string &file);

byte_buffer read_file(const std::string &file);

// A file written piece by piece.
class output_file {
  public:
    explicit output_file(const std::string &file);
    void write(byte_view bytes);
    void write(std::string_view text) { write({reinterpret_cast<const uint8_t *>(text.data()), text.size()}); }
    void finish(); // everything has been written when it returns

  private:
    [[noreturn]] void fail(const char *what) const;

    std::string name_;
    file_handle handle_;
};

// The whole of a file at once.
void write_file(const std::string &file, byte_view bytes);
void write_text(const std::string &file, std::string_view text);

// Two digits a byte.
std::string hex_text(byte_view bytes);

} // namespace qz::tool
