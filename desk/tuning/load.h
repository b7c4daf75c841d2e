// Containers as people have them: the bytes themselves, or their JSON source.
#pragma once

#include <string>

#include "desk/base/bytes.h"

namespace qz::desk {

// False for bytes that are JSON, as far as their beginning shows.
bool is_container(byte_view bytes);

// A container as it is, or packed from the bytes of its JSON source.
byte_buffer container_bytes(const std::string &file, byte_buffer bytes);

// The same, of which the library accepts every record; fails at the first that it refuses.
byte_buffer usable_container(const std::string &file, byte_buffer bytes);

} // namespace qz::desk
