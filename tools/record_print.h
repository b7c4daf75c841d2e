// A frame's record, block by block, for people and as JSON.
#pragma once

#include <string>

#include "json.h"
#include "record_layout.h"

namespace qz::tool {

// all: every value of every table; otherwise long tables show their first and last row, shading tables a map.
std::string record_text(const record_snapshot &snapshot, bool all);

// The blocks with everything in them.
json record_json(const record_snapshot &snapshot);

} // namespace qz::tool
