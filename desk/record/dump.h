// Raw dumps of AIC output records: one frame or several, each its bytes in use or the whole record.
#pragma once

#include <string>
#include <vector>

#include "files.h"
#include "record_layout.h"

namespace qz::tool {

// True when the bytes begin as a record does.
bool is_record_dump(byte_view bytes);

// The records of a dump. Throws file_error where a block is not the one that belongs there.
std::vector<record_snapshot> read_records(const std::string &file, byte_view bytes);

} // namespace qz::tool
