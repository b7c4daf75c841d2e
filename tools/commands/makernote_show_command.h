// qz-isp makernote show: a saved makernote.
#pragma once

#include <string>

namespace qz::tool {

struct makernote_show_options {
    std::string file;
    bool as_json = false;
    bool all = false;
};
int show_makernote(const makernote_show_options &options);

} // namespace qz::tool
