// The values of a tuning's records, for people.
#pragma once

#include <string>

#include "desk/json/text.h"
#include "desk/tuning/container.h"

namespace qz::tool {

// A record that is no set container: rows as a table, other values by field, and bytes that have no name.
std::string record_values_text(const desk::tuning_record &record, const std::string &name);

// All records of a container, one after the other.
void write_values_text(const desk::tuning_container &container, const desk::text_sink &sink);

} // namespace qz::tool
