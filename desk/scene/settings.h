// Inputs of frames given other values than their scene has.
#pragma once

#include <string>
#include <vector>

#include "desk/scene/frame_choice.h"
#include "desk/scene/scene.h"

namespace qz::desk {

// settings: "NAME=VALUE", see named_input; each for all chosen frames. Fails at others.
void apply_settings(const std::vector<std::string> &settings, scene &scene, const frame_choice &chosen);

} // namespace qz::desk
