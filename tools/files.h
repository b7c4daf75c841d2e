// Whole files in and out; "-" is standard input or output.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace qz::tool {

using byte_view = std::span<const uint8_t>;
using byte_buffer = std::vector<uint8_t>;

// What error messages call the file.
std::string input_name(const std::string &file);

byte_buffer read_file(const std::string &file);
void write_file(const std::string &file, byte_view bytes);
void write_text(const std::string &file, std::string_view text);

// Two digits a byte.
std::string hex_text(byte_view bytes);

} // namespace qz::tool
