#include "desk/tuning/pack.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"

namespace qz::tool {

int pack_tuning(const tuning_pack_options &options)
{
    const desk::byte_buffer source = read_file(options.source);
    write_file(options.container, desk::pack_container(input_name(options.source), desk::text_of(source)),
               {options.source});
    return exit_success;
}

} // namespace qz::tool
