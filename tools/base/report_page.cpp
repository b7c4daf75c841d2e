#include "tools/base/report_page.h"

#include <nlohmann/json.hpp>
#include <stdexcept>

#include <fmt/format.h>

namespace qz::tool {

namespace {

// JSON of ASCII characters that starts no HTML element, comment or end of one.
std::string inline_json(const desk::json &value)
{
    std::string text;
    for (const char character : value.dump(-1, ' ', true, desk::json::error_handler_t::replace)) {
        if (character == '<')
            text += "\\u003c";
        else
            text += character;
    }
    return text;
}

} // namespace

void expect_page(const report_page &page, std::string_view command)
{
    if (page.before.empty())
        throw std::runtime_error(std::string(command) +
                                 ": found a program that was built without the page, expected one with it: "
                                 "install Node.js 18 or newer with npm (Debian: nodejs npm), run `make report-bundle`, "
                                 "which takes packages from the npm registry, and build again");
}

std::string filled(const report_page &page, const desk::json &data, std::string_view module)
{
    std::string text = std::string(page.before) + inline_json(data);
    if (!module.empty())
        for (const auto &[id, part] : {std::pair("module", module), std::pair("module-licences", module_licences)})
            text += fmt::format("</script>\n<script type=\"text/plain\" id=\"{}\">{}", id, part);
    return text + std::string(page.after);
}

} // namespace qz::tool
