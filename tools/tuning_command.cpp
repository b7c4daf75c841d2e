#include <cstdio>
#include <memory>

#include <fmt/format.h>

#include "commands.h"
#include "error.h"
#include "tuning_print.h"
#include "tuning_source.h"

namespace qz::tool {

namespace {

struct tuning_options {
    std::string input;
    std::string output;
    bool as_json = false;
};

void pack(const tuning_options &options)
{
    const byte_buffer source = read_file(options.input);
    write_file(options.output, pack_container(input_name(options.input),
                                              {reinterpret_cast<const char *>(source.data()), source.size()}));
}

void show(const tuning_options &options)
{
    const std::string name = input_name(options.input);
    const byte_buffer bytes = read_file(options.input);
    const tuning_container container = read_container(name, bytes);
    write_text("-", options.as_json ? container_source(container) : container_text(container));
    for (const tuning_problem &problem : container.problems)
        fmt::print(stderr, "qz-isp: {}: {}{}\n", name, problem.error ? "" : "warning: ", problem_text(problem));
    if (container.has_errors())
        throw CLI::RuntimeError(1);
}

} // namespace

void add_tuning_command(CLI::App &app)
{
    const auto options = std::make_shared<tuning_options>();
    CLI::App *command = app.add_subcommand("tuning", "Tuning containers and their JSON source");
    command->require_subcommand(1);
    command->footer("Example: change a value of a container\n"
                    "  qz-isp tuning show --json sensor.vuxb > sensor.json\n"
                    "  qz-isp tuning pack sensor.json sensor.vuxb");

    CLI::App *packing = command->add_subcommand("pack", "Write a container from its JSON source");
    packing->add_option("SOURCE", options->input, "JSON source, or -")->required();
    packing->add_option("OUT", options->output, "Container to write, or -")->required();
    packing->footer("Example:\n  qz-isp tuning pack sensor.json sensor.vuxb");
    packing->callback([options] { pack(*options); });

    CLI::App *showing = command->add_subcommand("show", "List a container's records and what is wrong with them");
    showing->add_option("FILE", options->input, "Container, or -")->required();
    showing->add_flag("--json", options->as_json, "Print the JSON source that packs to the same bytes");
    showing->footer("Exit code 1 when the library refuses the container.\n\n"
                    "Example:\n  qz-isp tuning show sensor.vuxb");
    showing->callback([options] { show(*options); });
}

} // namespace qz::tool
