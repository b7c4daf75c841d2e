// Tuning containers from their JSON source: packing what container_source() gave gives the same bytes.
#pragma once

#include <string>
#include <string_view>

#include "desk/base/bytes.h"

namespace qz::desk {

byte_buffer pack_container(const std::string &file, std::string_view text);

} // namespace qz::desk
