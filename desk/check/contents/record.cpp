#include "desk/check/contents/record.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/tuning/record_problem.h"
#include "desk/tuning/value_by_name.h"
#include "tuning/record_view.h"

namespace qz::desk {

namespace {

size_t usable_rows(byte_view bytes, const record_kind &kind)
{
    const std::optional<row_counts> rows = kind.has_rows() ? count_rows(bytes, kind) : std::nullopt;
    return rows ? static_cast<size_t>(std::clamp(rows->stated, int64_t{0}, rows->held)) : 0;
}

} // namespace

int32_t checked_record::key(size_t number) const
{
    return kind->has_long_rows() ? value_at<int32_t>(row(number), 0) : value_at<uint16_t>(row(number), 0);
}

checked_record make_checked(byte_view bytes, size_t offset, const record_place &place, uint16_t set_index)
{
    return {place.kind,
            bytes,
            offset,
            read_le<uint16_t>(bytes, offsetof(isp_record, id)),
            bytes[offsetof(isp_record, version)],
            place.set,
            set_index,
            usable_rows(bytes, *place.kind)};
}

finding_place place_of(const checked_record &record)
{
    return {.name = fmt::format("{}{}[{}/{}]", tuning_prefix, record.kind->name, record.set, record.set_index),
            .record = record.kind->name,
            .id = record.id,
            .set = record.set,
            .set_index = record.set_index,
            .offset = record.offset};
}

finding_place place_of(const checked_record &record, size_t row)
{
    finding_place place = place_of(record);
    place.name += fmt::format(".{}[{}]", record.kind->layout == ISP_LAYOUT_ENTRIES ? "entries" : "rows", row);
    place.row = row;
    place.byte = record.offset + static_cast<size_t>(record.row(row) - record.bytes.data());
    return place;
}

finding_place place_of(const checked_record &record, size_t row, const field &column, size_t element)
{
    finding_place place = place_of(record, row);
    place.name += "." + element_name(column, element);
    place.byte = *place.byte + column.offset + element * element_size(column.type);
    return place;
}

finding_place place_of(const checked_record &record, const field &column, size_t element)
{
    finding_place place = place_of(record);
    place.name += "." + element_name(column, element);
    place.byte = record.offset + record.kind->start + column.offset + element * element_size(column.type);
    return place;
}

std::string and_more(size_t count, std::string_view of)
{
    return count == 0 ? "" : fmt::format(", and {} more {}", count, of);
}

} // namespace qz::desk
