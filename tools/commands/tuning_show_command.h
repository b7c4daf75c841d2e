// qz-isp tuning show: the records of a container and what is wrong with them.
#pragma once

#include <string>

namespace qz::tool {

struct tuning_show_options {
    std::string file;
    bool as_json = false;
};
int show_tuning(const tuning_show_options &options);

} // namespace qz::tool
