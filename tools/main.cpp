// qz-isp: shows what the library computes from a tuning container and a scene.
#include <cstdio>
#include <exception>

#include "command_line.h"
#include "commands.h"
#include "error.h"

int main(int argc, char **argv)
{
    int code = qz::tool::exit_failure;
    try {
        return qz::tool::run_command_line(argc, argv);
    } catch (const qz::tool::usage_error &error) {
        std::fprintf(stderr, "qz-isp: %s\n", error.what());
        code = qz::tool::exit_usage;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "qz-isp: %s\n", error.what());
    }
    return code;
}
