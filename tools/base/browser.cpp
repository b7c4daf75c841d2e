#include "tools/base/browser.h"

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <stdexcept>

#include <fmt/format.h>
#include <spawn.h>

extern char **environ;

namespace qz::tool {

void open_in_browser(const std::string &file)
{
    const char *chosen = std::getenv("BROWSER");
    std::string program = chosen != nullptr && *chosen != '\0' ? chosen : "xdg-open";
    std::string page = std::filesystem::absolute(file).string();
    char *const arguments[] = {program.data(), page.data(), nullptr};
    pid_t process = 0;
    if (const int problem = posix_spawnp(&process, program.c_str(), nullptr, nullptr, arguments, environ); problem != 0)
        throw std::runtime_error(
            fmt::format("--open: {} cannot be started: {}; the page is in {}", program, std::strerror(problem), file));
}

} // namespace qz::tool
