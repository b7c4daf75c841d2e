// The blocks of the AIC output record and their fields.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "fields.h"
#include "qz_isp/aic_record.h"

namespace qz::tool {

struct block_layout {
    std::string_view name;
    uint32_t id;
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
};

record_snapshot take_snapshot(const aic_record &record, uint32_t bytes_used);

// The size that the block's header states.
uint32_t block_size(const record_snapshot &snapshot, const block_layout &block);

// False for a lens shading block beyond the bytes in use.
bool block_present(const record_snapshot &snapshot, const block_layout &block);

// Elements of a field that the frame uses: fewer than its count for gamma tables of 256 entries.
size_t used_count(const record_snapshot &snapshot, const block_layout &block, const field &described);

std::vector<int64_t> field_values(const record_snapshot &snapshot, const block_layout &block, const field &described);

constexpr size_t shading_channels = 4;

// The lens shading tables: rows x columns entries a channel, as far as they lie inside the record.
struct shading_table {
    std::span<const uint16_t> entries;
    size_t columns;
    size_t rows;
};
bool has_shading_tables(const block_layout &block);
shading_table shading_channel(const record_snapshot &snapshot, size_t channel);

} // namespace qz::tool
