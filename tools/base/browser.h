// The user's browser.
#pragma once

#include <string>

namespace qz::tool {

// Starts what BROWSER names in the environment, else xdg-open, with the file, and does not wait for its end. Throws
// where it cannot be started.
void open_in_browser(const std::string &file);

} // namespace qz::tool
