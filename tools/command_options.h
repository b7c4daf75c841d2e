// The commands on the command line: their options, what --help says of them, and examples.
#pragma once

#include <CLI/CLI.hpp>
#include <functional>

namespace qz::tool {

// The command that was chosen, with its options.
using chosen_command = std::function<int()>;

// Once the line is read, the command that it names is in "chosen", which must live as long as the app.
void add_commands(CLI::App &app, chosen_command &chosen);

} // namespace qz::tool
