#include "tuning/store_record.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "tuning/record_view.h"
#include "tuning/slots.h"

namespace qz {
namespace {

// Zero-filled and at least min_size bytes long; null when memory runs out.
isp_record *copy_record(const void *source, uint32_t size, uint32_t min_size)
{
    void *copy = std::calloc(1, std::max(size, min_size));
    if (copy != nullptr)
        std::memcpy(copy, source, size);
    return static_cast<isp_record *>(copy);
}

template <typename Count>
void limit_count(isp_record *record, size_t at, uint32_t fitting, row_count_log &log)
{
    const auto claimed = value_at<Count>(record, at);
    if (claimed <= int64_t{fitting})
        return;
    const auto rows = static_cast<Count>(fitting);
    std::memcpy(reinterpret_cast<uint8_t *>(record) + at, &rows, sizeof rows);
    log.add(record->id, claimed, fitting);
}

// Limits the copy's row count to the rows that the record's bytes hold.
void limit_rows(isp_record *record, uint32_t size, const record_kind &kind, row_count_log &log)
{
    if (!has_rows(kind.layout))
        return;
    const uint32_t fitting = size > kind.payload ? (size - kind.payload) / kind.row_size : 0;
    if (kind.layout == ISP_LAYOUT_LONG_ROWS)
        limit_count<int32_t>(record, ISP_LONG_ROW_COUNT_AT, fitting, log);
    else
        limit_count<uint16_t>(record, ISP_SHORT_ROW_COUNT_AT, fitting, log);
}

void replace(isp_tuning_set &set, const record_kind &kind, isp_record *record)
{
    std::free(record_in(set, kind.slot));
    set_slot(set, kind.slot, record);
    if (kind.payload != 0)
        set_slot(set, kind.slot + 1u, reinterpret_cast<const uint8_t *>(record) + kind.payload);
}

// What lies behind the main table counts only where the record holds it whole.
void read_fringe_control_extension(isp_fringe_control_slot &slot, uint32_t size)
{
    const auto rows = short_rows<isp_fringe_control_row>(slot.record, slot.data);
    const auto *bytes = reinterpret_cast<const uint8_t *>(slot.record);
    const size_t count2_at = ISP_SHORT_ROW_COUNT_AT + sizeof(uint16_t) + rows.size_bytes();
    const size_t extra_at = count2_at + sizeof(uint16_t);
    const bool has_count2 = slot.record->version >= ISP_FRINGE_COUNT2_SINCE && extra_at <= size;
    const bool has_extra = slot.record->version >= ISP_FRINGE_EXTRA_SINCE &&
                           extra_at + rows.size() * sizeof(isp_fringe_control_extra_row) <= size;
    slot.count2 = has_count2 ? value_at<uint16_t>(bytes, count2_at) : 1;
    slot.extra = has_extra ? bytes + extra_at : nullptr;
}

// Holds a copy of its own; the slot stays empty when that copy cannot be allocated.
void hold_rec_13(isp_tuning_set &set, const isp_record *record, uint32_t size, const record_kind &kind)
{
    std::free(set.rec_13);
    set.rec_13 = copy_record(record, size, kind.fixed_size);
    if (set.rec_13 != nullptr && set.rec_13->version == ISP_REC_13_WITHOUT_SECOND)
        std::memset(reinterpret_cast<uint8_t *>(set.rec_13) + ISP_RECORD_HEADER_SIZE + sizeof(uint16_t), 0,
                    sizeof(uint16_t));
}

} // namespace

bool store_record(const void *source, uint32_t size, const record_kind &kind, isp_tuning_set &set, row_count_log &log)
{
    const uint32_t min_size = kind.name == record_name::rec_13 ? size : kind.fixed_size;
    isp_record *record = copy_record(source, size, min_size);
    if (record == nullptr)
        return false;

    limit_rows(record, size, kind, log);
    switch (kind.name) {
    default: replace(set, kind, record); break;
    case record_name::fringe_control:
        replace(set, kind, record);
        read_fringe_control_extension(set.fringe_control, size);
        break;
    case record_name::chroma_nr:
        replace(set, kind, record);
        set.chroma_nr.data_alt = nullptr;
        break;
    case record_name::chroma_nr_alt:
        replace(set, kind, record);
        set.chroma_nr.data_alt = set.chroma_nr.data;
        set.chroma_nr.data = nullptr;
        break;
    case record_name::rec_13:
        hold_rec_13(set, record, size, kind);
        std::free(record);
        break;
    }
    return true;
}

} // namespace qz
