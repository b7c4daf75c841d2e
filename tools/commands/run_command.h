// qz-isp run: the records of a scene's frames.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/base/inputs.h"

namespace qz::tool {

struct run_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::vector<std::string> settings;
    std::optional<std::string> raw;
    std::optional<std::string> makernote;
    bool as_json = false;
    bool all = false;
    bool explain = false;
};
int run(const run_options &options);

} // namespace qz::tool
