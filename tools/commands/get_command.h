// qz-isp get: values of one frame's record by their names.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/base/inputs.h"

namespace qz::tool {

struct get_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::vector<std::string> settings;
    std::string fields;
};
int get(const get_options &options);

} // namespace qz::tool
