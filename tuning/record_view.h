// Tuning records where they lie in memory: single values, and rows or values as their structs.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <span>
#include <type_traits>

#include "qz_isp/tuning.h"
#include "qz_isp/tuning_layout.h"

namespace qz {

static_assert(std::endian::native == std::endian::little, "tuning data is little-endian and read in place");

// At any alignment.
template <typename T>
T value_at(const void *bytes, size_t offset)
{
    T value;
    std::memcpy(&value, static_cast<const uint8_t *>(bytes) + offset, sizeof value);
    return value;
}

// True for the struct of a kind of record with one of the layouts.
template <typename Part>
consteval bool stands_in(std::initializer_list<isp_record_layout> layouts)
{
    bool found = false;
    for ([[maybe_unused]] const isp_record_layout asked : layouts) {
#define QZ_COMPARE(name, slot, in_320, in_768, in_1536, layout, start, part, size)                                     \
    found = found || (std::is_same_v<Part, part> && asked == ISP_LAYOUT_##layout);
        ISP_TUNING_RECORDS(QZ_COMPARE)
#undef QZ_COMPARE
    }
    return found;
}

constexpr bool has_rows(isp_record_layout layout)
{
    return layout != ISP_LAYOUT_HELD && layout != ISP_LAYOUT_VALUES;
}

// Rows that a gain lies between.
constexpr bool has_gain_rows(isp_record_layout layout)
{
    return has_rows(layout) && layout != ISP_LAYOUT_ENTRIES;
}

// What a record of a layout with rows says of their number; none where that is negative.
inline size_t row_count(const isp_record *record, isp_record_layout layout)
{
    if (layout != ISP_LAYOUT_LONG_ROWS)
        return value_at<uint16_t>(record, ISP_SHORT_ROW_COUNT_AT);
    const auto count = value_at<int32_t>(record, ISP_LONG_ROW_COUNT_AT);
    return count > 0 ? static_cast<size_t>(count) : 0;
}

// The rows or entries of a record of the 320 family, or of macc in any; none where there is no record, or none are
// given.
template <typename Row>
std::span<const Row> short_rows(const isp_record *record, const void *rows)
{
    static_assert(stands_in<Row>({ISP_LAYOUT_ROWS, ISP_LAYOUT_ROWS_AND_MORE, ISP_LAYOUT_ENTRIES}),
                  "a row that ISP_TUNING_RECORDS lists");
    if (record == nullptr || rows == nullptr)
        return {};
    return {static_cast<const Row *>(rows), row_count(record, ISP_LAYOUT_ROWS)};
}

template <typename Row>
std::span<const Row> short_rows(const isp_table_slot &slot)
{
    return short_rows<Row>(slot.record, slot.data);
}

// The rows of a record of the 768 or 1536 family, likewise.
template <typename Row>
std::span<const Row> long_rows(const isp_table_slot &slot)
{
    static_assert(stands_in<Row>({ISP_LAYOUT_LONG_ROWS}), "a row that ISP_TUNING_RECORDS lists");
    if (slot.record == nullptr || slot.data == nullptr)
        return {};
    return {static_cast<const Row *>(slot.data), row_count(slot.record, ISP_LAYOUT_LONG_ROWS)};
}

// The values of a record of fixed layout.
template <typename Values>
Values values_of(const isp_record *record)
{
    static_assert(stands_in<Values>({ISP_LAYOUT_VALUES}), "values that ISP_TUNING_RECORDS lists");
    return value_at<Values>(record, ISP_RECORD_HEADER_SIZE);
}

} // namespace qz
