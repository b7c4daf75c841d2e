// qz-isp diff: where two record dumps, tunings or scenes differ.
#pragma once

#include <string>

namespace qz::tool {

struct diff_options {
    std::string a;
    std::string b;
    bool as_json = false;
    bool all = false;
};
int diff(const diff_options &options);

} // namespace qz::tool
