// Inputs of frames and values of a tuning, given other values than their files have.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/base/named_value.h"
#include "desk/scene/frame_choice.h"
#include "desk/scene/scene.h"

namespace qz::desk {

// An input of the frame, or a value in the container's bytes, by its name: see find_input() and find_tuning_value().
named_value find_value(const value_option &option, std::string_view name, frame_inputs &inputs, byte_buffer &container);

// settings: "NAME=VALUE"; inputs are those of all chosen frames. Fails at others; option_name is what messages call it.
void apply_settings(const std::vector<std::string> &settings, scene &scene, const frame_choice &chosen,
                    byte_buffer &container, std::string_view option_name = "set");

} // namespace qz::desk
