#include "desk/record/layout.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace qz::desk {

namespace {

struct payload_field {
    std::string_view payload;
    field described; // offset from the start of the payload
};

consteval field read_as_plain(const field &described)
{
    return described;
}

// Tuned words are interpolated as signed numbers and stored as their two's complement.
consteval field read_as_signed_words(const field &described)
{
    return with_type(described, element::i32);
}

consteval field read_as_rows_of_3(field described)
{
    described.columns = 3;
    return described;
}

// What is not listed is left out by its count.
consteval field read_as_unlisted(field described)
{
    described.count = 0;
    return described;
}

#define QZ_PAYLOAD_FIELD(payload, member, reading) {#payload, read_as_##reading(QZ_FIELD(payload, member))},
constexpr payload_field payload_fields[] = {AIC_FIELDS(QZ_PAYLOAD_FIELD)};
#undef QZ_PAYLOAD_FIELD

struct block_row {
    block_layout block; // without its fields
    std::string_view payload;
};

#define QZ_BLOCK_ROW(name, id, size, offset, payload, padding, family) {{#name, id, size, offset, {}}, #payload},
constexpr block_row rows[] = {AIC_BLOCKS(QZ_BLOCK_ROW)};
#undef QZ_BLOCK_ROW

constexpr bool belongs(const payload_field &one, const block_row &row)
{
    return one.payload == row.payload && one.described.count != 0;
}

constexpr size_t field_count(const block_row &row)
{
    return static_cast<size_t>(
        std::ranges::count_if(payload_fields, [&](const payload_field &one) { return belongs(one, row); }));
}

consteval size_t field_count()
{
    size_t count = 0;
    for (const block_row &row : rows)
        count += field_count(row);
    return count;
}

// The blocks' fields, one block after the other, at their places in the record.
consteval auto placed_fields()
{
    std::array<field, field_count()> placed = {};
    size_t count = 0;
    for (const block_row &row : rows) {
        for (const payload_field &one : payload_fields) {
            if (belongs(one, row)) {
                placed[count] = one.described;
                placed[count++].offset += row.block.offset + block_header_size;
            }
        }
    }
    return placed;
}
constexpr std::array fields = placed_fields();

consteval auto blocks_with_fields()
{
    std::array<block_layout, std::size(rows)> all = {};
    size_t first = 0;
    for (size_t i = 0; i < all.size(); ++i) {
        all[i] = rows[i].block;
        all[i].fields = std::span(fields).subspan(first, field_count(rows[i]));
        first += all[i].fields.size();
    }
    return all;
}
constexpr std::array blocks = blocks_with_fields();

size_t held_entries(const record_snapshot &snapshot)
{
    constexpr size_t tables = AIC_FIXED_SIZE + AIC_LENS_SHADING_TABLES_OFFSET;
    const size_t bytes = snapshot.bytes_held > tables ? snapshot.bytes_held - tables : 0;
    return std::min(bytes / sizeof(uint16_t), std::size(snapshot.record.lens_shading.payload.entries));
}

} // namespace

std::span<const block_layout> record_blocks()
{
    return blocks;
}

size_t block_number(const block_layout &block)
{
    return static_cast<size_t>(&block - blocks.data());
}

record_snapshot take_snapshot(const aic_record &record, uint32_t bytes_used)
{
    record_snapshot snapshot;
    take_snapshot(record, bytes_used, sizeof record, snapshot);
    return snapshot;
}

void take_snapshot(const aic_record &record, uint32_t bytes_used, uint32_t bytes_held, record_snapshot &snapshot)
{
    std::memcpy(&snapshot.record, &record, bytes_held);
    snapshot.bytes_used = bytes_used;
    snapshot.bytes_held = bytes_held;
    if constexpr (sizeof(void *) == sizeof(uint32_t)) {
        const auto base = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&record));
        if (bytes_held == sizeof record) {
            for (uint32_t &table : snapshot.record.lens_shading.payload.table)
                table -= table != 0 ? base : 0;
        }
    }
}

uint32_t block_size(const record_snapshot &snapshot, const block_layout &block)
{
    constexpr field size = {"size", element::u32, 1, 1, 4, false};
    const auto *start = reinterpret_cast<const uint8_t *>(&snapshot.record) + block.offset;
    return static_cast<uint32_t>(integer_at(size, start, 0));
}

bool block_present(const record_snapshot &snapshot, const block_layout &block)
{
    return block.offset < snapshot.bytes_used;
}

size_t used_count(const record_snapshot &snapshot, const block_layout &block, const field &described)
{
    if (described.count != AIC_GAMMA_MAX_ENTRIES)
        return described.count;
    return integer_at(block.fields[0], &snapshot.record, 0) != 0 ? AIC_GAMMA_MAX_ENTRIES : AIC_GAMMA_MAX_ENTRIES - 1;
}

std::vector<int64_t> field_values(const record_snapshot &snapshot, const block_layout &block, const field &described)
{
    const size_t held = snapshot.bytes_held > described.offset ? snapshot.bytes_held - described.offset : 0;
    std::vector<int64_t> values(std::min(used_count(snapshot, block, described), held / element_size(described.type)));
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = integer_at(described, &snapshot.record, i);
    return values;
}

bool has_shading_tables(const block_layout &block)
{
    return block.offset == AIC_FIXED_SIZE;
}

shading_table shading_channel(const record_snapshot &snapshot, size_t channel)
{
    const aic_lens_shading &shading = snapshot.record.lens_shading.payload;
    const size_t columns = shading.columns;
    const size_t row_count = shading.rows;
    if (columns > AIC_LENS_SHADING_MAX_ENTRIES || row_count > AIC_LENS_SHADING_MAX_ENTRIES ||
        columns * row_count > AIC_LENS_SHADING_MAX_ENTRIES)
        return {};
    const std::span held = std::span(shading.entries).first(held_entries(snapshot));
    const size_t count = columns * row_count;
    const size_t start = std::min(channel * count, held.size());
    return {held.subspan(start, std::min(count, held.size() - start)), columns, row_count};
}

} // namespace qz::desk
