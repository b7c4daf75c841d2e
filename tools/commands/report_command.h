// qz-isp report: a page of charts.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tools/base/inputs.h"

namespace qz::tool {

struct report_options {
    input_files inputs;
    std::optional<std::string> frame;
    std::vector<std::string> settings;
    std::string page;
};
int report(const report_options &options);

} // namespace qz::tool
