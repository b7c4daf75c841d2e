// Origins of a frame's values, for people and as JSON.
#pragma once

#include <string>

#include "explain.h"
#include "json.h"

namespace qz::tool {

// What the whole frame was made with, and one block's values, in lines that start with the label of a field.
std::string frame_origin_text(const frame_origin &frame);
std::string block_origin_text(const frame_origin &frame, const block_origin &block);

json frame_origin_json(const frame_origin &frame);
json block_origin_json(const block_origin &block);

} // namespace qz::tool
