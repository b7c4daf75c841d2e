// qz-isp tuning pack: a container from its JSON source.
#pragma once

#include <string>

namespace qz::tool {

struct tuning_pack_options {
    std::string source;
    std::string container;
};
int pack_tuning(const tuning_pack_options &options);

} // namespace qz::tool
