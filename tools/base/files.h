// Files that commands read; "-" is standard input.
#pragma once

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>

#include "desk/base/bytes.h"

namespace qz::tool {

struct file_closer {
    void operator()(FILE *file) const; // leaves standard input and output open
};
using file_handle = std::unique_ptr<FILE, file_closer>;

// What error messages call the file.
std::string input_name(const std::string &file);

desk::byte_buffer read_file(const std::string &file);

} // namespace qz::tool
