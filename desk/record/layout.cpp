#include "record_layout.h"

#include <algorithm>
#include <array>

namespace qz::tool {

namespace {

// Payload fields by payload type; offsets from the start of the payload.
template <typename Payload>
constexpr std::array<field, 0> payload_fields = {};

// Tuned words are interpolated as signed numbers and stored as their two's complement.
#define QZ_SIGNED_FIELD(type, member) with_type(QZ_FIELD(type, member), element::i32)

template <>
constexpr std::array payload_fields<aic_white_balance> = {QZ_FIELD(aic_white_balance, shift),
                                                          QZ_FIELD(aic_white_balance, gain)};
template <>
constexpr std::array payload_fields<aic_defect_pixel> = {QZ_FIELD(aic_defect_pixel, param),
                                                         QZ_FIELD(aic_defect_pixel, gain)};
template <>
constexpr std::array payload_fields<aic_long_3> = {QZ_SIGNED_FIELD(aic_long_3, param), QZ_FIELD(aic_long_3, gain)};
template <>
constexpr std::array payload_fields<aic_colour_matrix> = {QZ_FIELD(aic_colour_matrix, frac_bits),
                                                          QZ_FIELD_ROWS(aic_colour_matrix, coeff, 3)};
template <>
constexpr std::array payload_fields<aic_params_3> = {QZ_FIELD(aic_params_3, param)};
template <>
constexpr std::array payload_fields<aic_noise_reduction> = {QZ_FIELD(aic_noise_reduction, param)};
template <>
constexpr std::array payload_fields<aic_rec_3> = {QZ_FIELD(aic_rec_3, value)};
template <>
constexpr std::array payload_fields<aic_y_edge_enhancement> = {QZ_FIELD(aic_y_edge_enhancement, param)};
template <>
constexpr std::array payload_fields<aic_fringe_control> = {
    QZ_FIELD(aic_fringe_control, exponent),     QZ_FIELD(aic_fringe_control, unused),
    QZ_FIELD(aic_fringe_control, field_0_to_3), QZ_FIELD(aic_fringe_control, field_4_to_7),
    QZ_FIELD(aic_fringe_control, field_8_to_9), QZ_FIELD(aic_fringe_control, field_10_to_11)};
template <>
constexpr std::array payload_fields<aic_word> = {QZ_FIELD(aic_word, value)};
template <>
constexpr std::array payload_fields<aic_half_word> = {QZ_FIELD(aic_half_word, value)};
template <>
constexpr std::array payload_fields<aic_chroma_nr> = {QZ_FIELD(aic_chroma_nr, field)};
template <>
constexpr std::array payload_fields<aic_ctc> = {QZ_FIELD(aic_ctc, mantissa), QZ_FIELD(aic_ctc, shift),
                                                QZ_FIELD(aic_ctc, value)};
template <>
constexpr std::array payload_fields<aic_macc> = {QZ_FIELD(aic_macc, coeff)};
template <>
constexpr std::array payload_fields<aic_byte> = {QZ_FIELD(aic_byte, value)};
template <>
constexpr std::array payload_fields<aic_black_level> = {QZ_FIELD(aic_black_level, level)};
template <>
constexpr std::array payload_fields<aic_xnr> = {QZ_FIELD(aic_xnr, param)};
template <>
constexpr std::array payload_fields<aic_rec_16> = {QZ_SIGNED_FIELD(aic_rec_16, value)};
template <>
constexpr std::array payload_fields<aic_half_words_2> = {QZ_FIELD(aic_half_words_2, value)};
template <>
constexpr std::array payload_fields<aic_bytes_2> = {QZ_FIELD(aic_bytes_2, value)};
template <>
constexpr std::array payload_fields<aic_long_5> = {
    QZ_SIGNED_FIELD(aic_long_5, curve_a), QZ_SIGNED_FIELD(aic_long_5, curve_b), QZ_SIGNED_FIELD(aic_long_5, param)};
template <>
constexpr std::array payload_fields<aic_long_6> = {QZ_SIGNED_FIELD(aic_long_6, param)};
template <>
constexpr std::array payload_fields<aic_long_7> = {QZ_SIGNED_FIELD(aic_long_7, param)};
template <>
constexpr std::array payload_fields<aic_long_13> = {QZ_SIGNED_FIELD(aic_long_13, param)};
template <>
constexpr std::array payload_fields<aic_long_11> = {QZ_SIGNED_FIELD(aic_long_11, param)};
template <>
constexpr std::array payload_fields<aic_long_12> = {QZ_SIGNED_FIELD(aic_long_12, param)};
template <>
constexpr std::array payload_fields<aic_gamma> = {QZ_FIELD(aic_gamma, has_257_entries), QZ_FIELD(aic_gamma, table)};
template <>
constexpr std::array payload_fields<aic_lens_shading> = {
    QZ_FIELD(aic_lens_shading, enable),        QZ_FIELD(aic_lens_shading, scaled_width),
    QZ_FIELD(aic_lens_shading, scaled_height), QZ_FIELD(aic_lens_shading, columns),
    QZ_FIELD(aic_lens_shading, rows),          QZ_FIELD(aic_lens_shading, format),
    QZ_FIELD(aic_lens_shading, table)};

// The payload's fields at their places in the record.
template <typename Payload>
consteval auto placed_fields(uint32_t block_offset)
{
    auto placed = payload_fields<Payload>;
    static_assert(!placed.empty(), "every payload type has its fields above");
    for (field &described : placed)
        described.offset += block_offset + 8;
    return placed;
}

#define QZ_PLACED(name, id, size, offset)                                                                              \
    constexpr auto name##_fields = placed_fields<decltype(aic_##name##_block::payload)>(offset);
AIC_BLOCKS(QZ_PLACED)
#undef QZ_PLACED

#define QZ_LAYOUT(name, id, size, offset) block_layout{#name, id, size, offset, name##_fields},
constexpr std::array blocks = {AIC_BLOCKS(QZ_LAYOUT)};
#undef QZ_LAYOUT

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
    record_snapshot snapshot = {record, bytes_used, sizeof record};
    if constexpr (sizeof(void *) == sizeof(uint32_t)) {
        const auto base = static_cast<uint32_t>(reinterpret_cast<uintptr_t>(&record));
        for (uint32_t &table : snapshot.record.lens_shading.payload.table)
            table -= table != 0 ? base : 0;
    }
    return snapshot;
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
    const size_t rows = shading.rows;
    if (columns > AIC_LENS_SHADING_MAX_ENTRIES || rows > AIC_LENS_SHADING_MAX_ENTRIES ||
        columns * rows > AIC_LENS_SHADING_MAX_ENTRIES)
        return {};
    const std::span held = std::span(shading.entries).first(held_entries(snapshot));
    const size_t count = columns * rows;
    const size_t start = std::min(channel * count, held.size());
    return {held.subspan(start, std::min(count, held.size() - start)), columns, rows};
}

} // namespace qz::tool
