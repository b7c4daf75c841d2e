// Files that can be compared: record dumps, makernotes, tunings and scenes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/diff/parts.h"

namespace qz::desk {

struct compared_file {
    std::string name;
    std::string_view kind;
    byte_buffer bytes;            // but those of a scene; of records, those in use
    std::vector<file_part> parts; // which may point into the bytes
};

// name: what messages call the file. settings: "NAME=VALUE", given to a tuning by the names of find_tuning_value() and
// to all frames of a scene by those of find_input(). Fails at others.
compared_file read_compared(std::string name, byte_buffer bytes, const std::vector<std::string> &settings = {});

} // namespace qz::desk
