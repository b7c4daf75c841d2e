// Frames of a scene and their records.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desk/explain/origin.h"
#include "desk/record/layout.h"
#include "desk/run/session.h"
#include "desk/scene/frame_choice.h"

namespace qz::desk {

struct computed_frame {
    size_t index;
    std::string name;
    record_snapshot snapshot;
    std::optional<frame_origin> origin; // where its values came from, when that is to be shown
};

// Runs the frames of a scene up to the last chosen one. What the origins point to is the session's.
std::vector<computed_frame> compute_frames(isp_session &session, const scene &scene, const frame_choice &chosen,
                                           bool explained);

} // namespace qz::desk
