#include "desk/tuning/record_problem.h"

#include <fmt/format.h>

#include "tuning/record_walk.h"

namespace qz::desk {

namespace {

using problem = std::optional<record_problem>;

problem silent(std::string_view code, std::string text)
{
    return record_problem{code, false, std::move(text)};
}

problem find_set_container_problem(byte_view record)
{
    qz::record_list nested = {};
    if (nested_list(record.data(), static_cast<uint32_t>(record.size()), nested))
        return std::nullopt;
    return record_problem{"set-container-short", true,
                          fmt::format("found size {} of a set container with the tag, expected at least {}",
                                      record.size(), record_header_size + container_header_size)};
}

problem find_rules_problem(byte_view record)
{
    const walked_record rules = {record.data(), static_cast<uint32_t>(record.size()), 0, rules_id, 0};
    if (!replaces_rules(rules))
        return silent("rules-short", fmt::format("found size {} of a rule record, expected at least {}: it is ignored",
                                                 record.size(), rules_start));
    if (!holds_its_rules(rules))
        return silent("rules-missing", fmt::format("found {} rules, its bytes hold {}: no rule is used",
                                                   read_le<uint32_t>(record, ISP_RULE_COUNT_AT),
                                                   (record.size() - rules_start) / rule_size));
    return std::nullopt;
}

problem find_fringe_problem(byte_view record, unsigned version, const record_kind &kind, size_t rows)
{
    const size_t count2_end = kind.start + kind.size * rows + sizeof(uint16_t);
    if (version >= ISP_FRINGE_COUNT2_SINCE && count2_end > record.size())
        return silent("fringe-tail-missing",
                      fmt::format("found version {} without its second count: read as version {}", version,
                                  ISP_FRINGE_COUNT2_SINCE - 1));
    if (version >= ISP_FRINGE_EXTRA_SINCE && count2_end + rows * sizeof(isp_fringe_control_extra_row) > record.size())
        return silent("fringe-tail-missing",
                      fmt::format("found version {} without its second table: read as version {}", version,
                                  ISP_FRINGE_EXTRA_SINCE - 1));
    return std::nullopt;
}

problem find_rows_problem(byte_view record, unsigned version, const record_kind &kind)
{
    const std::optional<row_counts> rows = count_rows(record, kind);
    if (!rows)
        return silent("rows-missing", fmt::format("found size {}, too short for a row count: no rows", record.size()));
    const auto [stated, held] = *rows;
    if (stated > held)
        return silent("rows-missing",
                      fmt::format("found {} rows, its bytes hold {}: the library uses {}", stated, held, held));
    if (kind.layout == ISP_LAYOUT_ROWS_AND_MORE)
        return find_fringe_problem(record, version, kind, static_cast<size_t>(stated));
    return std::nullopt;
}

} // namespace

std::optional<record_problem> find_problem(byte_view record)
{
    const auto version = record[offsetof(isp_record, version)];
    const auto id = read_le<uint16_t>(record, offsetof(isp_record, id));
    if (id >= first_set_container_id)
        return find_set_container_problem(record);
    if (id == rules_id)
        return find_rules_problem(record);
    const std::optional<record_place> place = find_place(id);
    if (!place)
        return std::nullopt;
    if (place->refused())
        return record_problem{
            "id-refused", true,
            fmt::format("found id offset {} of the 320 family, expected {}", place->offset, allowed_in_320())};
    if (place->kind == nullptr || !place->kind->has_rows())
        return std::nullopt;
    return find_rows_problem(record, version, *place->kind);
}

record_problem bad_size(size_t size, size_t left)
{
    return {"record-size", true,
            fmt::format("found size {}, expected {} to the {} bytes left in its list", size, record_header_size, left)};
}

std::optional<row_counts> count_rows(byte_view record, const record_kind &kind)
{
    if (record.size() < kind.start)
        return std::nullopt;
    const int64_t stated = kind.has_long_rows() ? static_cast<int32_t>(read_le<uint32_t>(record, ISP_LONG_ROW_COUNT_AT))
                                                : read_le<uint16_t>(record, ISP_SHORT_ROW_COUNT_AT);
    return row_counts{stated, static_cast<int64_t>((record.size() - kind.start) / kind.size)};
}

} // namespace qz::desk
