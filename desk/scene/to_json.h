// Scenes as JSON.
#pragma once

#include <string>

#include "desk/scene/scene.h"

namespace qz::desk {

// A scene that reads back as the same; every frame stands by itself.
std::string scene_source(const scene &scene);

} // namespace qz::desk
