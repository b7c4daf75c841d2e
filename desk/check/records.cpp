#include "desk/check/records.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/check/contents/curves.h"
#include "desk/check/contents/entries.h"
#include "desk/check/contents/limits.h"
#include "desk/check/contents/rows.h"
#include "desk/check/slots.h"
#include "desk/tuning/record_problem.h"
#include "qz_isp/error.h"
#include "tuning/record_walk.h"

namespace qz::desk {

namespace {

constexpr auto slot_count = static_cast<size_t>(tuning_slot::none);

class record_checker {
  public:
    record_checker(byte_view container, const reporter &report)
        : container_(container), report_(report), read_slots_(read_slots())
    {
        result_.set_indices.resize(1);
        filed_.resize(3 * slot_count);
    }

    checked_container check()
    {
        if (container_.size() < container_header_size)
            return std::move(result_);
        const byte_view list = container_.subspan(container_header_size);
        note_trailing(list.size(), {}, container_header_size);
        const auto visit = [&](const walked_record &record) -> uint32_t {
            check_record(record);
            return ISP_SUCCESS;
        };
        const auto malformed = [&](const uint8_t *place, uint32_t left) -> uint32_t {
            check_size(place, left);
            return ISP_SUCCESS;
        };
        if (walk({list.data(), static_cast<uint32_t>(list.size())}, visit, malformed) != ISP_SUCCESS)
            fail({"", "", "out of memory", ""});
        take_filed();
        return std::move(result_);
    }

  private:
    size_t offset_of(const uint8_t *place) const { return static_cast<size_t>(place - container_.data()); }

    void check_size(const uint8_t *place, uint32_t left)
    {
        const auto size = value_at<uint32_t>(place, offsetof(isp_record, size));
        if (holds_record({place, left}, size))
            return; // a set container, reported when it was visited
        const record_problem problem = bad_size(size, left);
        const auto id = value_at<uint16_t>(place, offsetof(isp_record, id));
        report_.add(code_of(problem.code), severity::error,
                    {.name = fmt::format("id {}", id), .id = id, .offset = offset_of(place)}, problem.text);
    }

    // Of a list of so many bytes left, at its end.
    void note_trailing(size_t left, finding_place place, size_t offset)
    {
        if (left == 0 || left > record_header_size)
            return;
        place.byte = offset;
        report_.add("trailing-bytes", std::move(place), fmt::format("found {} bytes from offset {} on", left, offset));
    }

    void check_record(const walked_record &walked)
    {
        const byte_view bytes(walked.bytes, walked.size);
        const size_t offset = offset_of(walked.bytes);
        const std::optional<record_place> place = find_place(walked.id);
        finding_place where = {.name = fmt::format("id {}", walked.id), .id = walked.id, .offset = offset};
        if (walked.set_index != 0)
            where.set_index = walked.set_index;

        std::optional<checked_record> checked;
        if (place && place->kind != nullptr) {
            checked = make_checked(bytes, offset, *place, static_cast<uint16_t>(walked.set_index));
            where = place_of(*checked);
        } else if (walked.is_set_container()) {
            where.name = fmt::format("set index {}", walked.nested_index());
            where.set_index = walked.nested_index();
        } else if (walked.id == rules_id) {
            where.name = "rules";
        }

        const std::optional<record_problem> problem = find_problem(bytes);
        if (problem) {
            const finding_code &code = code_of(problem->code);
            report_.add(code, code.level, where, problem->text);
        }
        if (checked)
            check_kind(*checked, problem.has_value());
        else if (walked.is_set_container())
            take_set_container(walked);
        else if (walked.id == rules_id)
            take_rules(walked, where);
        else if (!place)
            report_.add("record-unknown", where, fmt::format("found id {}, which no family has", walked.id));
        else if (!place->refused())
            report_.add("record-dropped", where,
                        fmt::format("found id offset {} of the {} family", place->offset, place->family));
        note_trailing(walked.behind, where, offset + walked.size);
    }

    void take_set_container(const walked_record &walked)
    {
        const auto index = static_cast<size_t>(walked.nested_index());
        if (index >= result_.set_indices.size()) {
            result_.set_indices.resize(index + 1);
            filed_.resize(3 * slot_count * (index + 1));
        }
        result_.set_indices[index].offset = offset_of(walked.bytes);
        qz::record_list nested = {};
        if (nested_list(walked.bytes, walked.size, nested))
            note_trailing(nested.length,
                          {.name = fmt::format("set index {}", index), .offset = offset_of(walked.bytes)},
                          offset_of(nested.bytes));
    }

    void take_rules(const walked_record &walked, const finding_place &where)
    {
        if (!replaces_rules(walked))
            return;
        if (result_.rules)
            report_.add("rules-replaced", {.name = "rules", .id = rules_id, .offset = result_.rules->offset},
                        fmt::format("replaced by the rules at offset {}", *where.offset));
        result_.rules = {{walked.bytes, walked.size}, *where.offset};
    }

    void check_kind(const checked_record &record, bool has_problem)
    {
        file(record);
        check_version(record);
        switch (record.kind->layout) {
        case ISP_LAYOUT_HELD: report_.add("record-unread", place_of(record), "found a record that is only held"); break;
        case ISP_LAYOUT_VALUES: check_values(record); break;
        case ISP_LAYOUT_ENTRIES:
            check_count(record, has_problem);
            check_entries(record, report_);
            break;
        default: {
            check_count(record, has_problem);
            const std::vector<size_t> by_key = rows_by_key(record);
            check_keys(record, by_key, report_);
            check_columns(record, by_key, report_);
        }
        }
        check_curve_order(record, report_);
        check_limits(record, report_);
    }

    // The place of a record in filed_.
    static size_t place_in(const checked_record &record)
    {
        return (size_t{3} * record.set_index + record.set) * slot_count +
               static_cast<size_t>(slot_of(record.kind->slot));
    }

    void file(const checked_record &record)
    {
        std::optional<checked_record> &held = filed_[place_in(record)];
        if (held)
            report_.add("record-replaced", place_of(*held),
                        fmt::format("replaced by the record at offset {}", record.offset));
        held = record;
        if ((bit_of(slot_of(record.kind->slot)) & read_slots_) != 0)
            result_.set_indices[record.set_index].holds_records = true;
    }

    void take_filed()
    {
        for (const std::optional<checked_record> &each : filed_)
            if (each)
                result_.records.push_back(*each);
    }

    void check_version(const checked_record &record)
    {
        const unsigned version = record.version;
        const bool is_fringe = record.kind->layout == ISP_LAYOUT_ROWS_AND_MORE;
        const unsigned lowest = ISP_FRINGE_COUNT2_SINCE - 1;
        if (version >= lowest && version <= ISP_FRINGE_EXTRA_SINCE)
            return;
        std::string reading = "which makes no difference to records of this kind";
        if (is_fringe)
            reading = fmt::format("read as version {}", version < lowest ? lowest : ISP_FRINGE_EXTRA_SINCE);
        else if (record.kind->name == "rec_13")
            reading = fmt::format("read as version {}", ISP_REC_13_WITHOUT_SECOND + 1);
        report_.add(
            "version-unknown", place_of(record),
            fmt::format("found version {}, expected {} to {}: {}", version, lowest, ISP_FRINGE_EXTRA_SINCE, reading));
    }

    // Of a record of fixed layout.
    void check_values(const checked_record &record)
    {
        const record_kind &kind = *record.kind;
        const bool without_second = kind.name == "rec_13" && record.version == ISP_REC_13_WITHOUT_SECOND;
        const size_t whole = kind.start + kind.size;
        const size_t needed = without_second ? whole - sizeof(uint16_t) : whole;
        const size_t size = record.bytes.size();
        if (size < needed)
            report_.add("record-short", place_of(record), fmt::format("found size {}, expected {}", size, whole));
        else if (size > whole)
            note_unread(record, whole);
        const field &values = kind.fields.front();
        if (without_second && size >= whole && integer_at(values, record.bytes.data() + kind.start, 1) != 0)
            report_.add("value-ignored", place_of(record, values, 1),
                        fmt::format("found {}, which version {} takes as 0",
                                    integer_at(values, record.bytes.data() + kind.start, 1), record.version));
    }

    void note_unread(const checked_record &record, size_t end)
    {
        finding_place place = place_of(record);
        place.byte = record.offset + end;
        report_.add("bytes-unread", std::move(place),
                    fmt::format("found {} bytes behind its contents", record.bytes.size() - end));
    }

    // What a record's row count leaves out.
    void check_count(const checked_record &record, bool has_problem)
    {
        const record_kind &kind = *record.kind;
        const size_t size = record.bytes.size();
        if (record.rows == 0)
            report_.add("rows-none", place_of(record),
                        fmt::format("found {} rows", count_rows(record.bytes, kind).value_or(row_counts{}).stated));
        size_t end = kind.start + record.rows * kind.size;
        if (kind.layout == ISP_LAYOUT_ROWS_AND_MORE)
            end = check_fringe_tail(record, end);
        if (has_problem || size <= end)
            return;
        if (size - end >= kind.size)
            report_.add(
                "rows-unstated", place_of(record),
                fmt::format("found {} rows, and bytes for {} more behind them", record.rows, (size - end) / kind.size));
        else
            note_unread(record, end);
    }

    // Where what the version adds behind the rows ends.
    size_t check_fringe_tail(const checked_record &record, size_t end)
    {
        const size_t size = record.bytes.size();
        if (record.version < ISP_FRINGE_COUNT2_SINCE || size < end + sizeof(uint16_t))
            return end;
        const auto count2 = read_le<uint16_t>(record.bytes, end);
        if (const auto kept = static_cast<uint8_t>(count2); kept != count2) {
            finding_place place = place_of(record);
            place.name += ".count2";
            place.byte = record.offset + end;
            report_.add("value-truncated", std::move(place),
                        fmt::format("found {}, of which {} is kept", count2, kept));
        }
        end += sizeof(uint16_t);
        const size_t extra = record.rows * sizeof(isp_fringe_control_extra_row);
        return record.version >= ISP_FRINGE_EXTRA_SINCE && size >= end + extra ? end + extra : end;
    }

    byte_view container_;
    const reporter &report_;
    slot_set read_slots_;
    checked_container result_;
    std::vector<std::optional<checked_record>> filed_;
};

} // namespace

size_t checked_rules::count() const
{
    const walked_record record = {bytes.data(), static_cast<uint32_t>(bytes.size()), 0, rules_id, 0};
    return holds_its_rules(record) ? read_le<uint32_t>(bytes, ISP_RULE_COUNT_AT) : 0;
}

tuning_slot slot_of(std::string_view name)
{
    for (size_t slot = 0; slot < slot_count; ++slot)
        if (slot_name(static_cast<tuning_slot>(slot)) == name)
            return static_cast<tuning_slot>(slot);
    return tuning_slot::none;
}

checked_container check_records(byte_view container, const reporter &report)
{
    return record_checker(container, report).check();
}

} // namespace qz::desk
