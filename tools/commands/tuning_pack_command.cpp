#include "desk/tuning/pack.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/base/verdict.h"
#include "tools/commands/commands.h"

namespace qz::tool {

int pack_tuning(const tuning_pack_options &options)
{
    const std::string name = input_name(options.source);
    const desk::byte_buffer container = desk::pack_container(name, desk::text_of(read_file(options.source)));
    if (!print_verdict(name, container)) {
        for (const desk::tuning_problem &problem : desk::read_container(name, container).problems)
            if (problem.error)
                print_problem(name, problem);
        if (!options.force)
            return exit_failure;
    }
    write_file(options.container, container, {options.source});
    return exit_success;
}

} // namespace qz::tool
