// Record dumps and saved makernotes as qz-isp reads them; everything that it can show of those that it accepts.
#include "error.h"
#include "input.h"
#include "makernote_file.h"
#include "record_dump.h"

namespace {

namespace tool = qz::tool;

void show_records(tool::byte_view bytes)
{
    for (const tool::record_snapshot &record : tool::read_records("input", bytes)) {
        fuzz::expect(record.bytes_used <= AIC_RECORD_SIZE && record.bytes_held <= AIC_RECORD_SIZE,
                     "a record is within its size");
        for (const tool::block_layout &block : tool::record_blocks())
            for (const tool::field &field : block.fields)
                tool::field_values(record, block, field);
        for (size_t channel = 0; channel < tool::shading_channels; ++channel) {
            const tool::shading_table table = tool::shading_channel(record, channel);
            table.at(table.rows, table.columns);
        }
    }
}

void show_makernote(tool::byte_view bytes)
{
    const tool::saved_makernote makernote = tool::read_makernote("input", bytes);
    for (const tool::makernote_record &record : makernote.records) {
        fuzz::expect(!tool::makernote_format_name(record.format).empty(), "an accepted record has a format");
        fuzz::expect(record.values().size() == record.count, "a record has as many values as it states");
        fuzz::expect(record.text().size() == record.data.size(), "a text is the record's bytes");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const tool::byte_buffer file(bytes, bytes + size);
    try {
        if (tool::is_record_dump(file))
            show_records(file);
        else
            show_makernote(file);
    } catch (const tool::file_error &) {
        return 0;
    }
    return 0;
}
