// What the report page shows, as JSON.
#pragma once

#include "desk/json/json.h"
#include "desk/run/session.h"
#include "desk/scene/frame_choice.h"

namespace qz::desk {

// The chosen frames of a scene.
json report_data(const scene &setup, const byte_buffer &container, const std::string &tuning_name,
                 const frame_choice &chosen);

} // namespace qz::desk
