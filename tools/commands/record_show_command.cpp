#include "desk/record/dump.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"
#include "tools/text/record_text.h"

namespace qz::tool {

int show_record(const record_show_options &options)
{
    std::vector<desk::computed_frame> frames;
    for (const desk::record_snapshot &record : desk::read_records(input_name(options.file), read_file(options.file)))
        frames.push_back({frames.size(), "", record, std::nullopt});
    write_text("-", options.as_json ? desk::frames_json(frames) : frames_text(frames, options.all));
    return exit_success;
}

} // namespace qz::tool
