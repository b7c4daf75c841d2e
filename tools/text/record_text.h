// Frames and their records, block by block, for people and as JSON.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "explain.h"
#include "json.h"
#include "record_layout.h"

namespace qz::tool {

// One frame of a scene and its record.
struct computed_frame {
    size_t index;
    std::string name;
    record_snapshot snapshot;
    std::optional<frame_origin> origin; // where its values came from, when that is to be shown
};

// all: every value of every table; otherwise long tables show their first and last row, shading tables a map.
std::string frames_text(const std::vector<computed_frame> &frames, bool all);

// Everything, as JSON and as its text.
json frame_json(const computed_frame &frame);
std::string frames_json(const std::vector<computed_frame> &frames);

} // namespace qz::tool
