#include "tuning/store_record.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "qz_isp/error.h"
#include "qz_log.h"
#include "tuning/bytes.h"
#include "tuning/slots.h"

namespace qz {
namespace {

constexpr size_t short_count_at = 8;
constexpr size_t long_count_at = 16;

// Zero-filled and at least min_size bytes long; null when memory runs out.
isp_record *copy_record(const void *source, uint32_t size, uint32_t min_size)
{
    void *copy = std::calloc(1, std::max(size, min_size));
    if (copy != nullptr)
        std::memcpy(copy, source, size);
    return static_cast<isp_record *>(copy);
}

void log_limited(const isp_record *record, int64_t claimed, uint32_t rows)
{
    qz_log(QZ_LOG_ERROR, "tuning record %u: %lld rows claimed, %u fit", static_cast<unsigned>(record->id),
           static_cast<long long>(claimed), static_cast<unsigned>(rows));
}

// Limits the copy's row count to the rows that the record's bytes hold.
void limit_rows(isp_record *record, uint32_t size, record_kind kind)
{
    if (kind.counter == row_counter::none)
        return;
    auto *bytes = reinterpret_cast<uint8_t *>(record);
    const uint32_t fitting = size > kind.payload ? (size - kind.payload) / kind.row_size : 0;
    if (kind.counter == row_counter::u16_at_8) {
        const auto claimed = read_at<uint16_t>(bytes, short_count_at);
        if (claimed <= fitting)
            return;
        const auto rows = static_cast<uint16_t>(fitting);
        std::memcpy(bytes + short_count_at, &rows, sizeof rows);
        log_limited(record, claimed, rows);
    } else {
        const auto claimed = read_at<int32_t>(bytes, long_count_at);
        if (claimed <= static_cast<int64_t>(fitting))
            return;
        std::memcpy(bytes + long_count_at, &fitting, sizeof fitting);
        log_limited(record, claimed, fitting);
    }
}

void replace(isp_tuning_set &set, record_kind kind, isp_record *record)
{
    std::free(record_in(set, kind.slot));
    set_slot(set, kind.slot, record);
    if (kind.payload != 0)
        set_slot(set, kind.slot + 1u, reinterpret_cast<const uint8_t *>(record) + kind.payload);
}

// What lies behind the main table counts only where the record holds it whole.
void read_fringe_control_extension(isp_fringe_control_slot &slot, uint32_t size)
{
    constexpr uint32_t extra_row_size = 8;
    const auto *bytes = reinterpret_cast<const uint8_t *>(slot.record);
    const uint32_t rows = read_at<uint16_t>(bytes, short_count_at);
    const uint32_t count2_at = 10 + 18 * rows;
    const uint32_t extra_at = count2_at + 2;
    const bool has_count2 = slot.record->version > 100 && extra_at <= size;
    const bool has_extra = slot.record->version > 101 && extra_at + extra_row_size * rows <= size;
    slot.count2 = has_count2 ? read_at<uint16_t>(bytes, count2_at) : 1;
    slot.extra = has_extra ? bytes + extra_at : nullptr;
}

// Holds a copy of its own; the slot stays empty when that copy cannot be allocated.
void hold_rec_13(isp_tuning_set &set, const isp_record *record, uint32_t size, record_kind kind)
{
    std::free(set.rec_13);
    set.rec_13 = copy_record(record, size, kind.fixed_size);
    constexpr uint8_t version_without_second_value = 100;
    if (set.rec_13 != nullptr && set.rec_13->version == version_without_second_value)
        std::memset(reinterpret_cast<uint8_t *>(set.rec_13) + 10, 0, 2);
}

} // namespace

uint32_t store_record(const void *source, uint32_t size, record_kind kind, isp_tuning_set &set)
{
    const uint32_t min_size = kind.how == filing::rec_13 ? size : kind.fixed_size;
    isp_record *record = copy_record(source, size, min_size);
    if (record == nullptr)
        return ISP_OUT_OF_MEMORY;

    limit_rows(record, size, kind);
    switch (kind.how) {
    case filing::unknown:
    default: std::free(record); return ISP_INVALID_DATA;
    case filing::dropped: std::free(record); break;
    case filing::plain: replace(set, kind, record); break;
    case filing::fringe_control:
        replace(set, kind, record);
        read_fringe_control_extension(set.fringe_control, size);
        break;
    case filing::chroma_nr:
        replace(set, kind, record);
        set.chroma_nr.data_alt = nullptr;
        break;
    case filing::chroma_nr_alt:
        replace(set, kind, record);
        set.chroma_nr.data_alt = set.chroma_nr.data;
        set.chroma_nr.data = nullptr;
        break;
    case filing::rec_13:
        hold_rec_13(set, record, size, kind);
        std::free(record);
        break;
    }
    return ISP_SUCCESS;
}

} // namespace qz
