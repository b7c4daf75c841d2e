// The blocks of the AIC output record and their fields.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string_view>
#include <type_traits>

#include "desk/base/fields.h"
#include "qz_isp/aic_record.h"

namespace qz::desk {

// Bytes of a block's id and size.
constexpr uint32_t block_header_size = offsetof(aic_white_balance_block, payload);

struct block_layout {
    std::string_view name;
    uint32_t id;
    uint32_t size;                 // as its header states it, that of an empty lens shading block
    uint32_t offset;               // of the block in the record
    std::span<const field> fields; // offsets from the start of the record
};

// All blocks in record order.
std::span<const block_layout> record_blocks();

// The place of one of them in record order.
size_t block_number(const block_layout &block);

// A frame's record, taken out of the context. The lens shading block's table words hold offsets from the start of the
// record on every target.
struct record_snapshot {
    aic_record record;
    uint32_t bytes_used;
    uint32_t bytes_held; // of the record: a dump can end before the last lens shading entries
};

record_snapshot take_snapshot(const aic_record &record, uint32_t bytes_used);
// bytes_held: how much of the record is to be taken.
void take_snapshot(const aic_record &record, uint32_t bytes_used, uint32_t bytes_held, record_snapshot &snapshot);

// The size that the block's header states.
uint32_t block_size(const record_snapshot &snapshot, const block_layout &block);

// False for a lens shading block beyond the bytes in use.
bool block_present(const record_snapshot &snapshot, const block_layout &block);

// Elements of a field that the frame uses: fewer than its count for gamma tables of 256 entries.
size_t used_count(const record_snapshot &snapshot, const block_layout &block, const field &described);

// The elements in use, as far as the record is held.
std::vector<int64_t> field_values(const record_snapshot &snapshot, const block_layout &block, const field &described);

constexpr size_t shading_channels = std::extent_v<decltype(aic_lens_shading::table)>;

// The lens shading tables: rows x columns entries a channel, as far as they lie inside the record and it is held.
struct shading_table {
    std::span<const uint16_t> entries;
    size_t columns;
    size_t rows;

    std::optional<uint16_t> at(size_t row, size_t column) const
    {
        const size_t index = row * columns + column;
        return index < entries.size() ? std::optional(entries[index]) : std::nullopt;
    }
};
bool has_shading_tables(const block_layout &block);
shading_table shading_channel(const record_snapshot &snapshot, size_t channel);

} // namespace qz::desk
