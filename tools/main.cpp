// qz-isp: shows what the library computes from a tuning container and a scene.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <exception>
#include <string>

#include "desk/base/error.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/command_line.h"

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
    } catch (const qz::desk::error &error) {
        // A choice is an option of the command line.
        print_error((error.file ? "" : "--") + error_text(error));
        code = error.file ? qz::tool::exit_failure : qz::tool::exit_usage;
    } catch (const qz::tool::usage_error &error) {
        print_error(error.what());
        code = qz::tool::exit_usage;
    } catch (const std::exception &error) {
        print_error(error.what());
    }
    return code;
}
