// Ids, sizes and offsets of the AIC output record, pinned at compile time.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>

#include "qz_isp/aic_record.h"

namespace qz {

template <typename Block>
struct block_header;

#define QZ_BLOCK_HEADER(name, block_id, block_size, offset, payload, padding, family)                                  \
    template <>                                                                                                        \
    struct block_header<aic_##name##_block> {                                                                          \
        static constexpr uint32_t id = block_id;                                                                       \
        static constexpr uint32_t size = block_size;                                                                   \
    };
AIC_BLOCKS(QZ_BLOCK_HEADER)
#undef QZ_BLOCK_HEADER

struct payload_field {
    std::string_view payload;
    size_t offset;
    size_t size;
};

#define QZ_PAYLOAD_FIELD(payload, field, reading) {#payload, offsetof(payload, field), sizeof(payload::field)},
inline constexpr payload_field payload_fields[] = {AIC_FIELDS(QZ_PAYLOAD_FIELD)};
#undef QZ_PAYLOAD_FIELD

// Where the payload's fields end that follow one another without a gap.
consteval size_t end_of_fields(std::string_view payload)
{
    size_t end = 0;
    for (const payload_field &field : payload_fields)
        if (field.payload == payload && field.offset <= end)
            end = std::max(end, field.offset + field.size);
    return end;
}

// The lens shading block is the only one that goes beyond its header's size: its tables follow.
#define QZ_CHECK_BLOCK(name, block_id, block_size, block_offset, payload, padding, family)                             \
    static_assert(offsetof(aic_record, name) == (block_offset), "offset of block " #name);                             \
    static_assert((block_id) == 28 || sizeof(aic_##name##_block) == (size_t{block_size} + 7) / 8 * 8,                  \
                  "size and padding of block " #name);                                                                 \
    static_assert(end_of_fields(#payload) == sizeof(payload), "every field of " #payload " has a row in AIC_FIELDS");
AIC_BLOCKS(QZ_CHECK_BLOCK)
#undef QZ_CHECK_BLOCK

static_assert(sizeof(aic_record) == AIC_RECORD_SIZE, "AIC_RECORD_SIZE is that of all blocks");
static_assert(offsetof(aic_record, lens_shading) == AIC_FIXED_SIZE, "AIC_FIXED_SIZE is that of the blocks before");
static_assert(offsetof(aic_lens_shading_block, payload.entries) == AIC_LENS_SHADING_TABLES_OFFSET);

template <typename Block>
void write_header(Block &block)
{
    block.id = block_header<Block>::id;
    block.size = block_header<Block>::size;
}

} // namespace qz
