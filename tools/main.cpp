// qz-isp: shows what the library computes from a tuning container and a scene.
#include <cstdio>
#include <exception>

#include <fmt/format.h>

#include "commands.h"
#include "error.h"

namespace {

constexpr int exit_failure = 1;
constexpr int exit_usage = 2;

int run_program(int argc, char **argv)
{
    CLI::App app("Shows the hardware parameters that a tuning container gives for the frames of a scene.", "qz-isp");
    app.require_subcommand(1);
    app.footer("Example: the record of a sample frame\n  qz-isp run\n\n"
               "Exit codes: 0 done, 1 a file or its contents are wrong, 2 wrong use of the command line.");
    app.failure_message([](const CLI::App *, const CLI::Error &error) {
        return fmt::format("qz-isp: {}\nRun with --help for more information.\n", error.what());
    });
    qz::tool::add_run_command(app);
    qz::tool::add_tuning_command(app);
    try {
        app.parse(argc, argv);
    } catch (const CLI::RuntimeError &error) {
        return error.get_exit_code();
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : exit_usage;
    }
    return 0;
}

} // namespace

int main(int argc, char **argv)
{
    int code = exit_failure;
    try {
        return run_program(argc, argv);
    } catch (const qz::tool::usage_error &error) {
        std::fprintf(stderr, "qz-isp: %s\n", error.what());
        code = exit_usage;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "qz-isp: %s\n", error.what());
    }
    return code;
}
