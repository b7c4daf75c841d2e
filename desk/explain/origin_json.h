// Origins of a frame's values as JSON.
#pragma once

#include "desk/explain/origin.h"
#include "desk/json/json.h"

namespace qz::desk {

json frame_origin_json(const frame_origin &frame);
json block_origin_json(const block_origin &block);

} // namespace qz::desk
