// Frames and their records, block by block, for people.
#pragma once

#include <string>
#include <vector>

#include "desk/explain/frame_json.h"

namespace qz::tool {

// all: every value of every table; otherwise long tables show their first and last row, shading tables a map.
std::string frames_text(const std::vector<desk::computed_frame> &frames, bool all);

} // namespace qz::tool
