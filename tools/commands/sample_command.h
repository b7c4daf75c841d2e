// qz-isp sample: the scene and the tuning that are built into the program, to start from.
#pragma once

#include <string>

namespace qz::tool {

struct sample_options {
    std::string what; // scene or tuning
    std::string file = "-";
};
int write_sample(const sample_options &options);

} // namespace qz::tool
