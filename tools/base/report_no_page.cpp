#include "tools/base/report_page.h"

const qz::tool::report_page qz::tool::built_in_page = {};
