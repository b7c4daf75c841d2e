// The page that `report` fills with its data.
#pragma once

#include <string>
#include <string_view>

#include "desk/base/json.h"

namespace qz::tool {

// HTML with its scripts and styles inside, cut where the data goes; empty in a program that was built without it.
struct report_page {
    std::string_view before;
    std::string_view after;
};
extern const report_page built_in_page;

// The whole page. Throws where there is none.
std::string filled(const report_page &page, const desk::json &data);

} // namespace qz::tool
