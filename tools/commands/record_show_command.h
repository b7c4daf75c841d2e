// qz-isp record show: the records of a dump.
#pragma once

#include <string>

namespace qz::tool {

struct record_show_options {
    std::string file;
    bool as_json = false;
    bool all = false;
};
int show_record(const record_show_options &options);

} // namespace qz::tool
