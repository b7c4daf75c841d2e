#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "commands.h"
#include "json.h"
#include "makernote_file.h"
#include "value_rows.h"

namespace qz::tool {

namespace {

std::string makernote_text(const saved_makernote &makernote, bool all)
{
    std::string text = fmt::format("{} records, {} dropped\n\n", makernote.records.size(), makernote.dropped);
    for (const makernote_record &record : makernote.records) {
        text += fmt::format("{:>5}  {}\n", record.name, makernote_record_name(record.name));
        const std::string label = fmt::format("{} x {}", makernote_format_name(record.format), record.count);
        if (record.is_text())
            text += fmt::format("       {:<21} {:?}\n", label, record.text());
        else
            print_rows(text, label, record.values(), 16, all);
        if (!record.key.empty())
            text += fmt::format("       {:<21} {:?}\n", "key", record.key);
    }
    return text;
}

std::string makernote_json(const saved_makernote &makernote)
{
    json records = json::array();
    for (const makernote_record &record : makernote.records) {
        json &made = records.emplace_back(json::object());
        made = {{"name", record.name},
                {"block", makernote_record_name(record.name)},
                {"format", makernote_format_name(record.format)},
                {"count", record.count}};
        if (record.is_text())
            made["text"] = record.text();
        else
            made["values"] = record.values();
        if (!record.key.empty())
            made["key"] = record.key;
    }
    return json_text({{"dropped", makernote.dropped}, {"records", std::move(records)}});
}

} // namespace

int show_makernote(const dump_options &options)
{
    const byte_buffer bytes = read_file(options.file);
    const saved_makernote makernote = read_makernote(input_name(options.file), bytes);
    write_text("-", options.as_json ? makernote_json(makernote) : makernote_text(makernote, options.all));
    return exit_success;
}

} // namespace qz::tool
