// qz-isp: shows what the library computes from a tuning container and a scene.
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <new>
#include <string>

#include "desk/base/error.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/command_line.h"

namespace {

// Names of a file may hold what a terminal would obey.
void print_error(std::string message)
{
    std::ranges::replace_if(
        message, [](unsigned char each) { return each < ' ' && each != '\n'; }, '?');
    std::fprintf(stderr, "qz-isp: %s\n", message.c_str());
}

// No exception: its way up, and what it is told with, take memory too.
[[noreturn]] void run_out_of_memory()
{
    qz::tool::remove_unfinished_file();
    std::fputs("qz-isp: out of memory\n", stderr);
    std::_Exit(qz::tool::exit_failure);
}

// Before what is constructed ahead of main() allocates.
[[gnu::constructor(101)]] void expect_to_run_out_of_memory()
{
    std::set_new_handler(run_out_of_memory);
}

} // namespace

int main(int argc, char **argv)
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN)); // writing fails instead
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
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
