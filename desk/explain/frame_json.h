// Frames and their records, block by block, as JSON.
#pragma once

#include <string>
#include <vector>

#include "desk/explain/computed_frames.h"
#include "desk/json/json.h"

namespace qz::desk {

// Everything, as JSON and as its text.
json frame_json(const computed_frame &frame);
std::string frames_json(const std::vector<computed_frame> &frames);

} // namespace qz::desk
