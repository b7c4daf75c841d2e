// Record dumps and saved makernotes as qz-isp reads them; everything that it can show of those that it accepts.
#include "desk/base/error.h"
#include "desk/makernote/file.h"
#include "desk/record/dump.h"
#include "fuzz/input.h"

namespace {

namespace desk = qz::desk;

void show_records(desk::byte_view bytes)
{
    for (const desk::record_snapshot &record : desk::read_records("input", bytes)) {
        fuzz::expect(record.bytes_used <= AIC_RECORD_SIZE && record.bytes_held <= AIC_RECORD_SIZE,
                     "a record is within its size");
        for (const desk::block_layout &block : desk::record_blocks())
            for (const desk::field &field : block.fields)
                desk::field_values(record, block, field);
        for (size_t channel = 0; channel < desk::shading_channels; ++channel) {
            const desk::shading_table table = desk::shading_channel(record, channel);
            table.at(table.rows, table.columns);
        }
    }
}

void show_makernote(desk::byte_view bytes)
{
    const desk::saved_makernote makernote = desk::read_makernote("input", bytes);
    for (const desk::makernote_record &record : makernote.records) {
        fuzz::expect(!desk::makernote_format_name(record.format).empty(), "an accepted record has a format");
        fuzz::expect(record.values().size() == record.count, "a record has as many values as it states");
        fuzz::expect(record.text().size() == record.data.size(), "a text is the record's bytes");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const desk::byte_buffer file(bytes, bytes + size);
    try {
        if (desk::is_record_dump(file))
            show_records(file);
        else
            show_makernote(file);
    } catch (const desk::error &) {
        return 0;
    }
    return 0;
}
