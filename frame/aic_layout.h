// Ids, sizes and offsets of the AIC output record, pinned at compile time.
#pragma once

#include <cstddef>
#include <cstdint>

#include "qz_isp/aic_record.h"

namespace qz {

template <typename Block>
struct block_header;

#define QZ_BLOCK_HEADER(name, block_id, block_size, offset)                                                            \
    template <>                                                                                                        \
    struct block_header<aic_##name##_block> {                                                                          \
        static constexpr uint32_t id = block_id;                                                                       \
        static constexpr uint32_t size = block_size;                                                                   \
    };
AIC_BLOCKS(QZ_BLOCK_HEADER)
#undef QZ_BLOCK_HEADER

// The lens shading block is the only one that goes beyond its header's size: its tables follow.
#define QZ_CHECK_BLOCK(name, block_id, block_size, block_offset)                                                       \
    static_assert(offsetof(aic_record, name) == (block_offset));                                                       \
    static_assert((block_id) == 28 || sizeof(aic_##name##_block) == (size_t{block_size} + 7) / 8 * 8);
AIC_BLOCKS(QZ_CHECK_BLOCK)
#undef QZ_CHECK_BLOCK

static_assert(sizeof(aic_record) == AIC_RECORD_SIZE);
static_assert(offsetof(aic_record, lens_shading) == AIC_FIXED_SIZE);
static_assert(offsetof(aic_lens_shading_block, payload.entries) == AIC_LENS_SHADING_TABLES_OFFSET);
static_assert(sizeof(aic_fringe_control) == 26);
static_assert(sizeof(aic_ctc) == 22);
static_assert(sizeof(aic_gamma) == 520);

template <typename Block>
void write_header(Block &block)
{
    block.id = block_header<Block>::id;
    block.size = block_header<Block>::size;
}

} // namespace qz
