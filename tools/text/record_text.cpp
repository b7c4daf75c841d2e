#include "tools/text/record_text.h"

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include "tools/text/explain_text.h"
#include "tools/text/lines.h"

namespace qz::tool {

using namespace desk;

namespace {

using text_output = std::back_insert_iterator<std::string>;

double shading_unit(const record_snapshot &snapshot)
{
    return snapshot.record.lens_shading.payload.format == 10 ? 1024.0 : 256.0;
}

// The index of sample i of `samples` spread over 0 to count - 1, both ends included.
size_t spread(size_t i, size_t samples, size_t count)
{
    return samples < 2 ? 0 : i * (count - 1) / (samples - 1);
}

// Gains of two channels side by side, sampled over the grid.
void print_shading_maps(std::string &text, const record_snapshot &snapshot, size_t left)
{
    const shading_table tables[] = {shading_channel(snapshot, left), shading_channel(snapshot, left + 1)};
    const size_t rows = std::min<size_t>(7, tables[0].rows);
    const size_t columns = std::min<size_t>(9, tables[0].columns);
    const std::string title = fmt::format("gains of channel {}", left);
    fmt::format_to(text_output(text), "{}{:<{}}    gains of channel {}\n", line_indent, title,
                   std::max(title.size(), 5 * columns), left + 1);
    for (size_t row = 0; row < rows; ++row) {
        text += line_indent;
        for (const shading_table &table : tables) {
            for (size_t column = 0; column < columns; ++column) {
                const std::optional<uint16_t> entry =
                    table.at(spread(row, rows, table.rows), spread(column, columns, table.columns));
                text += entry ? fmt::format("{:.2f} ", *entry / shading_unit(snapshot)) : "   - ";
            }
            text += &table == tables ? "   " : "";
        }
        text.back() = '\n';
    }
}

void print_shading(std::string &text, const record_snapshot &snapshot, bool all)
{
    for (size_t channel = 0; channel < shading_channels; ++channel) {
        const shading_table table = shading_channel(snapshot, channel);
        if (table.entries.empty())
            return;
        if (all) {
            const std::vector<int64_t> values(table.entries.begin(), table.entries.end());
            text += number_lines(fmt::format("table {}", channel), values, table.columns, true);
        } else if (channel % 2 == 0) {
            print_shading_maps(text, snapshot, channel);
        }
    }
}

std::string record_text(const record_snapshot &snapshot, const std::optional<frame_origin> &origin, bool all)
{
    std::string text = origin ? frame_origin_text(*origin) : "";
    for (const block_layout &block : record_blocks()) {
        const bool present = block_present(snapshot, block);
        if (present)
            fmt::format_to(text_output(text), "  {:>3}  {:<26} offset {:>5}   size {:>5}\n", block.id, block.name,
                           block.offset, block_size(snapshot, block));
        else if (origin)
            fmt::format_to(text_output(text), "  {:>3}  {:<26} not in use\n", block.id, block.name);
        if (origin)
            text += block_origin_text(origin->gain, origin->blocks[block_number(block)]);
        if (!present)
            continue;
        for (const field &described : block.fields)
            text += number_lines(described.name, field_values(snapshot, block, described), described.columns, all);
        if (has_shading_tables(block))
            print_shading(text, snapshot, all);
    }
    return text;
}

} // namespace

std::string frames_text(const std::vector<computed_frame> &frames, bool all)
{
    std::string text;
    for (const computed_frame &frame : frames) {
        text += fmt::format("{}frame {}{}: {} bytes in use\n\n", text.empty() ? "" : "\n", frame.index,
                            frame.name.empty() ? "" : fmt::format(" {:?}", frame.name), frame.snapshot.bytes_used);
        text += record_text(frame.snapshot, frame.origin, all);
    }
    return text;
}

} // namespace qz::tool
