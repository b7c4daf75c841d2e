#include <cstdio>

#include <fmt/format.h>

#include "commands.h"
#include "tuning_print.h"
#include "tuning_source.h"

namespace qz::tool {

int pack_tuning(const pack_options &options)
{
    const byte_buffer source = read_file(options.source);
    write_file(options.container, pack_container(input_name(options.source),
                                                 {reinterpret_cast<const char *>(source.data()), source.size()}));
    return exit_success;
}

int show_tuning(const show_options &options)
{
    const std::string name = input_name(options.file);
    const byte_buffer bytes = read_file(options.file);
    const tuning_container container = read_container(name, bytes);
    write_text("-", options.as_json ? container_source(container) : container_text(container));
    for (const tuning_problem &problem : container.problems)
        fmt::print(stderr, "qz-isp: {}: {}{}\n", name, problem.error ? "" : "warning: ", problem_text(problem));
    return container.has_errors() ? exit_failure : exit_success;
}

} // namespace qz::tool
