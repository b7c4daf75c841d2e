#include <nlohmann/json.hpp>

#include "desk/tuning/load.h"
#include "desk/tuning/to_json.h"
#include "desk/tuning/value_by_name.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/base/verdict.h"
#include "tools/commands/commands.h"
#include "tools/text/record_values_text.h"
#include "tools/text/tuning_text.h"

namespace qz::tool {

namespace {

std::string record_output(const std::string &file, const tuning_show_options &options,
                          const desk::tuning_container &container)
{
    const auto [record, name] = desk::find_tuning_record(file, *options.record, container);
    return options.as_json ? desk::json_text(desk::source_object(record)) : record_values_text(record, name);
}

} // namespace

int show_tuning(const tuning_show_options &options)
{
    const std::string name = input_name(options.file);
    const desk::byte_buffer bytes = desk::container_bytes(name, read_file(options.file));
    const desk::tuning_container container = desk::read_container(name, bytes);
    output_file output("-");
    const auto write = [&](std::string_view text) { output.write(text); };
    if (options.record)
        write(record_output(name, options, container));
    else if (options.as_json)
        desk::write_source(container, write);
    else if (options.values)
        write_values_text(container, write);
    else
        write_tuning_text(container, write);
    output.finish();
    for (const desk::tuning_problem &problem : container.problems)
        print_problem(name, problem);
    return print_verdict(name, bytes) ? exit_success : exit_failure;
}

} // namespace qz::tool
