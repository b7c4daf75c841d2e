#include "tools/base/report_page.h"

const std::string_view qz::tool::built_in_module = {};
const std::string_view qz::tool::module_licences = {};
