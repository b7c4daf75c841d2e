// The inputs of a frame by the names that options give them: "gain", "frame.size.width", "colour.ccm[4]".
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "desk/base/named_value.h"
#include "desk/scene/scene.h"

namespace qz::desk {

// The analog gain, with a digital gain of 1.
constexpr std::string_view gain_name = "gain";

// Makes the struct that holds the input first, correcting nothing, where the frame has none. Fails at other names.
named_value find_input(const value_option &option, std::string_view name, frame_inputs &inputs);

// Of every input that find_input() knows.
std::vector<value_names> input_names();

// Of what a frame's inputs hold, or would hold where they are missing; every element of a list by its own name.
std::vector<std::string> single_input_names(const frame_inputs &inputs);

} // namespace qz::desk
