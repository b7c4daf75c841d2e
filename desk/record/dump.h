// Raw dumps of AIC output records: one frame or several, each its bytes in use or the whole record.
#pragma once

#include <string>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/record/layout.h"

namespace qz::desk {

// True when the bytes begin as a record does.
bool is_record_dump(byte_view bytes);

// The records of a dump. Fails where a block is not the one that belongs there.
std::vector<record_snapshot> read_records(const std::string &file, byte_view bytes);

// Appends a record's bytes in use.
void append_record(byte_buffer &dump, const record_snapshot &record);

} // namespace qz::desk
