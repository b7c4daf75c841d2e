#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"
#include "tools/sample/sample.h"

namespace qz::tool {

int write_sample(const sample_options &options)
{
    write_text(options.file, options.what == "scene" ? sample_scene : sample_tuning);
    return exit_success;
}

} // namespace qz::tool
