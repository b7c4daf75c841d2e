// qz-isp: shows what the library computes from a tuning container and a scene.
#include <csignal>
#include <cstdio>
#include <exception>

#include "command_line.h"
#include "commands.h"
#include "error.h"

int main(int argc, char **argv)
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // writing fails instead
    int code = qz::tool::exit_failure;
    try {
        return qz::tool::run_command_line(argc, argv);
    } catch (const qz::tool::closed_pipe &) {
        code = qz::tool::exit_closed_pipe;
    } catch (const qz::tool::usage_error &error) {
        std::fprintf(stderr, "qz-isp: %s\n", error.what());
        code = qz::tool::exit_usage;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "qz-isp: %s\n", error.what());
    }
    return code;
}
