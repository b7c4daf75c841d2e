// Files that can be compared: record dumps, tunings and scenes.
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
    byte_buffer bytes; // of records and tunings, without what no record uses
    std::vector<file_part> parts;
};

// name: what messages call the file.
compared_file read_compared(std::string name, byte_buffer bytes);

} // namespace qz::desk
