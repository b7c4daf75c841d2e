// The commands of the program. Each adds itself to the command line and runs when it was chosen.
#pragma once

#include <CLI/CLI.hpp>

namespace qz::tool {

void add_run_command(CLI::App &app);
void add_tuning_command(CLI::App &app);

} // namespace qz::tool
