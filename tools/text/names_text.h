// What sweeps can vary and print, by name.
#pragma once

#include <string>

#include "desk/base/bytes.h"
#include "desk/scene/scene.h"

namespace qz::tool {

// A line for each input of a frame, value of the tuning, value of the record and frame with a name: what it is, its
// name, that of a list's last element, and what values it may have.
std::string names_text(const desk::scene &scene, desk::byte_view container);

} // namespace qz::tool
