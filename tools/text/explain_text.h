// Origins of a frame's values, for people.
#pragma once

#include <cstdint>
#include <string>

#include "desk/explain/explain.h"

namespace qz::tool {

// What the whole frame was made with, and one block's values, in lines that start with the label of a field. gain: the
// frame's, 256 = unity.
std::string frame_origin_text(const desk::frame_origin &frame);
std::string block_origin_text(uint32_t gain, const desk::block_origin &block);

} // namespace qz::tool
