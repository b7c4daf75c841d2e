// The list of a container's records.
#pragma once

#include "desk/json/text.h"
#include "desk/tuning/container.h"

namespace qz::tool {

void write_tuning_text(const desk::tuning_container &container, const desk::text_sink &sink);

} // namespace qz::tool
