// Frames and their records, block by block, as JSON.
#pragma once

#include <string>
#include <vector>

#include "desk/base/json.h"
#include "desk/explain/computed_frames.h"

namespace qz::desk {

// Everything, as JSON and as its text.
json frame_json(const computed_frame &frame);
std::string frames_json(const std::vector<computed_frame> &frames);

} // namespace qz::desk
