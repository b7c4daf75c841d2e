// The inputs of a frame that are plain numbers, by the names that a scene gives them.
#pragma once

#include <span>
#include <string_view>

#include "desk/base/fields.h"
#include "desk/scene/scene.h"

namespace qz::desk {

// A struct of a frame's inputs.
struct input_group {
    std::string_view path;                 // its names from the frame on, with dots between; empty for the frame itself
    std::span<const field> fields;         // offsets from the start of the struct
    void *(*record)(frame_inputs &inputs); // the struct; made first, correcting nothing, where the frame has none
    const void *(*find)(const frame_inputs &inputs); // the struct; null where the frame has none
};

// A group stands after the one whose path its own begins with.
std::span<const input_group> input_groups();

std::span<const field> sensor_fields();

// Bit k of the effect flag word.
constexpr std::string_view effect_names[] = {"macc_1",    "macc_2",   "macc_3", "macc_4",       "macc_5", "warm_grey",
                                             "two_level", "negative", "vivid",  "negative_alt", "grey",   "cool_grey"};

} // namespace qz::desk
