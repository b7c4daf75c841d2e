// Structs from and to JSON objects by the description of their fields.
#pragma once

#include <span>

#include "desk/base/fields.h"
#include "desk/json/json.h"
#include "desk/json/node.h"

namespace qz::desk {

// Reads the members of an object into a struct; those that are absent stay as they are. Names outside the description
// are the caller's to refuse.
void read_fields(const json_node &object, std::span<const field> fields, void *base);
void write_fields(json &object, std::span<const field> fields, const void *base);

} // namespace qz::desk
