// The JSON source of a tuning container.
#pragma once

#include <string>

#include "desk/json/json.h"
#include "desk/json/text.h"
#include "desk/tuning/container.h"

namespace qz::desk {

// What stands in the source of a container, or of a record, without the records inside.
json source_object(const tuning_container &container);
json source_object(const tuning_record &record);

void write_source(const tuning_container &container, const text_sink &sink);
std::string container_source(const tuning_container &container);

} // namespace qz::desk
