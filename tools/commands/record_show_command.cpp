#include "commands.h"
#include "record_dump.h"
#include "record_print.h"

namespace qz::tool {

int show_record(const dump_options &options)
{
    std::vector<computed_frame> frames;
    for (const record_snapshot &record : read_records(input_name(options.file), read_file(options.file)))
        frames.push_back({frames.size(), "", record, std::nullopt});
    write_text("-", options.as_json ? frames_json(frames) : frames_text(frames, options.all));
    return exit_success;
}

} // namespace qz::tool
