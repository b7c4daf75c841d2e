// The page that `report` and `sweep --plot` fill with their data.
#pragma once

#include <string>
#include <string_view>

#include "desk/json/json.h"

namespace qz::tool {

// HTML with its scripts and styles inside, cut where the data goes; empty in a program that was built without it.
struct report_page {
    std::string_view before;
    std::string_view after;
};
extern const report_page built_in_page;

// Throws where there is none; command: for what it is wanted.
void expect_page(const report_page &page, std::string_view command);

// The library and the desk as a WebAssembly module, packed with gzip, in base64; empty in a program that was built
// without it.
extern const std::string_view built_in_module;
// In the same form, the licences of the libraries in the module.
extern const std::string_view module_licences;

// The whole page, with the module or, where that is empty, without.
std::string filled(const report_page &page, const desk::json &data, std::string_view module = {});

} // namespace qz::tool
