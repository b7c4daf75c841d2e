#include "tools/command_line.h"

#include <algorithm>
#include <cstdio>
#include <sstream>

#include <fmt/format.h>

#include "desk/base/one_of.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/command_options.h"

namespace qz::tool {

namespace {

[[noreturn]] void fail_word(const CLI::App &command, std::string_view found, std::string_view expected)
{
    const std::string place = command.get_parent() == nullptr ? "" : command.get_name() + ": ";
    throw usage_error(fmt::format("{}found {}, expected {}", place, found, expected));
}

// A command of a group by its name.
const CLI::App *known_command(const CLI::App &group, const std::string &name)
{
    std::vector<std::string_view> names;
    for (const CLI::App *command : group.get_subcommands({})) {
        if (command->get_name() == name)
            return command;
        names.push_back(command->get_name());
    }
    fail_word(group, name.empty() ? "no command" : name, names.empty() ? "nothing more" : desk::one_of(names, name));
}

struct help_options {
    std::vector<std::string> words; // of the command
};

// The text that --help prints for a command, or for all of them.
int show_help(const CLI::App &app, const help_options &options)
{
    const CLI::App *command = &app;
    std::string line;
    for (const std::string &word : options.words) {
        line += command->get_name() + " ";
        command = known_command(*command, word);
    }
    write_text("-", app.get_formatter()->make_help(command, line + command->get_name(), CLI::AppFormatMode::Normal));
    return exit_success;
}

void add_help(CLI::App &app, chosen_command &chosen)
{
    const auto options = std::make_shared<help_options>();
    CLI::App *command = app.add_subcommand("help", "Show what --help shows of a command");
    command->add_option("COMMAND", options->words, "The command's words; none: all commands");
    command->callback([&, options] { chosen = [&, options] { return show_help(app, *options); }; });
}

// Says of a line that does not parse what is wrong with it. CLI11 looks for what is missing before what it does not
// know.
[[noreturn]] void fail_parse(const CLI::App &app, const CLI::ParseError &error)
{
    const CLI::App *command = &app;
    while (!command->get_subcommands().empty())
        command = command->get_subcommands().front();
    const std::vector<std::string> unknown = app.remaining(true);
    const auto option = std::ranges::find_if(unknown, [](const std::string &word) { return word.starts_with('-'); });
    if (option != unknown.end()) {
        std::vector<std::string> options;
        for (const CLI::Option *known :
             command->get_options([](const CLI::Option *each) { return each->nonpositional(); }))
            options.push_back("--" + known->get_lnames().front());
        const std::vector<std::string_view> names(options.begin(), options.end());
        fail_word(*command, *option, desk::one_of(names, *option));
    }
    if (!command->get_subcommands({}).empty())
        known_command(*command, unknown.empty() ? "" : unknown.front());
    throw usage_error(fmt::format("{}\nRun with --help for more information.", error.what()));
}

} // namespace

int run_command_line(int argc, char **argv)
{
    CLI::App app("Shows the hardware parameters that a tuning container gives for the frames of a scene.", "qz-isp");
    app.require_subcommand(1);
    app.footer("Example: the record of a sample frame\n  qz-isp run\n\n"
               "Exit codes: 0 done, 1 a file or its contents are wrong, 2 wrong use of the command line.");
    app.set_version_flag("--version", "qz-isp " QZ_ISP_VERSION);

    chosen_command chosen;
    add_commands(app, chosen);
    add_help(app, chosen);
    if (argc < 2) {
        std::fputs(app.help().c_str(), stderr);
        return exit_usage;
    }
    try {
        app.parse(argc, argv);
    } catch (const CLI::Success &asked) { // for help or the version
        std::ostringstream text;
        app.exit(asked, text, text);
        write_text("-", text.str());
        return exit_success;
    } catch (const CLI::ParseError &error) {
        fail_parse(app, error);
    }
    return chosen();
}

} // namespace qz::tool
