// The grammar of the command line.
#pragma once

namespace qz::tool {

// Runs the command that the arguments name and gives the exit code.
int run_command_line(int argc, char **argv);

} // namespace qz::tool
