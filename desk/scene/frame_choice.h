// Which frames of a scene are meant.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include "desk/scene/scene.h"

namespace qz::desk {

// The choice of every frame of a scene.
constexpr std::string_view all_frames = "all";

struct frame_choice {
    size_t first;
    size_t last; // one past the last
};

// The last frame without a choice, one by name or number, or "all". Fails at others.
frame_choice choose_frames(const scene &scene, const std::optional<std::string> &choice);

} // namespace qz::desk
