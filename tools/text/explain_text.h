// Origins of a frame's values, for people.
#pragma once

#include <string>

#include "desk/explain/explain.h"

namespace qz::tool {

// What the whole frame was made with, and one block's values, in lines that start with the label of a field.
std::string frame_origin_text(const desk::frame_origin &frame);
std::string block_origin_text(const desk::frame_origin &frame, const desk::block_origin &block);

} // namespace qz::tool
