#include <fmt/format.h>

#include "desk/makernote/to_json.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"
#include "tools/text/lines.h"

namespace qz::tool {

using namespace desk;

namespace {

std::string makernote_text(const saved_makernote &makernote, bool all)
{
    std::string text = fmt::format("{} records, {} dropped\n\n", makernote.records.size(), makernote.dropped);
    for (const makernote_record &record : makernote.records) {
        text += fmt::format("{:>5}  {}\n", record.name, makernote_record_name(record.name));
        const std::string label = fmt::format("{} x {}", makernote_format_name(record.format), record.count);
        if (record.is_text())
            text += labelled_line(label, fmt::format("{:?}", record.text()));
        else
            text += number_lines(label, record.values(), 16, all);
        if (!record.key.empty())
            text += labelled_line("key", fmt::format("{:?}", record.key));
    }
    return text;
}

} // namespace

int show_makernote(const makernote_show_options &options)
{
    const byte_buffer bytes = read_file(options.file);
    const saved_makernote makernote = read_makernote(input_name(options.file), bytes);
    write_text("-", options.as_json ? makernote_json(makernote) : makernote_text(makernote, options.all));
    return exit_success;
}

} // namespace qz::tool
