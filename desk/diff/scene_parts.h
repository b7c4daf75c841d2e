// The setup and the frames of a scene as parts to compare.
#pragma once

#include <vector>

#include "desk/diff/parts.h"
#include "desk/scene/scene.h"

namespace qz::desk {

std::vector<file_part> scene_parts(const scene &scene);

} // namespace qz::desk
