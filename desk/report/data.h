// What the report page shows, as JSON.
#pragma once

#include <utility>

#include "inputs.h"
#include "json.h"
#include "session.h"

namespace qz::tool {

// Runs the frames of a scene up to `chosen`'s end and describes the chosen ones.
json report_data(const scene &inputs, const byte_buffer &container, const std::string &tuning,
                 const std::pair<size_t, size_t> &chosen);

} // namespace qz::tool
