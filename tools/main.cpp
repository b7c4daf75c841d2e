// qz-isp: shows what the library computes from a tuning container and a scene.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>

#include "command_line.h"
#include "commands.h"
#include "error.h"

namespace {

// Names of a file may hold what a terminal would obey.
void print_error(std::string message)
{
    std::ranges::replace_if(
        message, [](unsigned char each) { return each < ' ' && each != '\n'; }, '?');
    std::fprintf(stderr, "qz-isp: %s\n", message.c_str());
}

} // namespace

int main(int argc, char **argv)
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // writing fails instead
    int code = qz::tool::exit_failure;
    try {
        return qz::tool::run_command_line(argc, argv);
    } catch (const qz::tool::closed_pipe &) {
        code = qz::tool::exit_closed_pipe;
    } catch (const qz::tool::usage_error &error) {
        print_error(error.what());
        code = qz::tool::exit_usage;
    } catch (const std::exception &error) {
        print_error(error.what());
    }
    return code;
}
