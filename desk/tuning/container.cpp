#include "desk/tuning/container.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/base/error.h"

namespace qz::desk {

namespace {

class container_reader {
  public:
    explicit container_reader(byte_view bytes) : bytes_(bytes) {}

    record_list read_list(size_t start, size_t length, unsigned depth)
    {
        record_list list;
        size_t offset = start;
        const size_t end = start + length;
        // Fewer than 9 bytes are no record, whatever they say.
        while (end - offset > record_header_size) {
            const auto size = read_le<uint32_t>(bytes_, offset);
            if (size < record_header_size || size > end - offset) {
                problem(true, offset,
                        fmt::format("found size {}, expected {} to the {} bytes left in its list", size,
                                    record_header_size, end - offset));
                break;
            }
            list.records.push_back(read_record(offset, size, depth));
            offset += size;
        }
        list.trailing = bytes_.subspan(offset, end - offset);
        return list;
    }

    std::vector<tuning_problem> take_problems() { return std::move(problems_); }

  private:
    void problem(bool error, size_t offset, std::string text)
    {
        problems_.push_back({error, offset, read_le<uint16_t>(bytes_, offset + 6), std::move(text)});
    }

    tuning_record read_record(size_t offset, size_t size, unsigned depth)
    {
        tuning_record record = {};
        record.offset = offset;
        record.version = bytes_[offset + 4];
        record.unread = bytes_[offset + 5];
        record.id = read_le<uint16_t>(bytes_, offset + 6);
        record.body = bytes_.subspan(offset + record_header_size, size - record_header_size);
        record.place = find_place(record.id);
        if (record.id >= first_set_container_id)
            read_set_container(record, depth);
        else if (record.id == rules_id)
            check_rules(record);
        else if (record.place)
            check_slot(record);
        return record;
    }

    void read_set_container(tuning_record &record, unsigned depth)
    {
        record.tagged = record.body.size() >= 4 && read_le<uint32_t>(record.body, 0) == container_tag;
        const size_t header_size = record.tagged ? container_header_size : 0;
        if (record.body.size() < header_size) {
            problem(true, record.offset,
                    fmt::format("found size {} of a set container with the tag, expected at least {}", record.size(),
                                record_header_size + container_header_size));
            return;
        }
        if (depth >= max_nesting) {
            problem(false, record.offset,
                    fmt::format("found a set container nested more than {} deep, shown as bytes", max_nesting));
            return;
        }
        record.is_set_container = true;
        if (record.tagged)
            record.header = record.body.subspan(4, container_header_size - 4);
        record.nested =
            read_list(record.offset + record_header_size + header_size, record.body.size() - header_size, depth + 1);
    }

    void check_rules(const tuning_record &record)
    {
        if (record.size() < rules_start) {
            problem(false, record.offset,
                    fmt::format("found size {} of a rule record, expected at least {}: it is ignored", record.size(),
                                rules_start));
            return;
        }
        const auto count = static_cast<uint64_t>(stated_rows(record).value_or(0));
        if (count * rule_size + rules_start > record.size())
            problem(false, record.offset,
                    fmt::format("found {} rules, its bytes hold {}: no rule is used", count,
                                (record.size() - rules_start) / rule_size));
    }

    void check_slot(const tuning_record &record)
    {
        if (record.place->kind == nullptr) {
            if (record.place->refused())
                problem(true, record.offset,
                        fmt::format("found id offset {} of the 320 family, expected {}", record.place->offset,
                                    allowed_in_320()));
            return;
        }
        check_rows(record);
    }

    void check_rows(const tuning_record &record)
    {
        const record_kind &kind = *record.place->kind;
        if (!kind.has_rows())
            return;
        const std::optional<int64_t> stated = stated_rows(record);
        if (!stated) {
            problem(false, record.offset,
                    fmt::format("found size {}, too short for a row count: no rows", record.size()));
            return;
        }
        const auto held = static_cast<int64_t>((record.size() - kind.start) / kind.size);
        if (*stated > held)
            problem(false, record.offset,
                    fmt::format("found {} rows, its bytes hold {}: the library uses {}", *stated, held, held));
        else if (kind.layout == ISP_LAYOUT_ROWS_AND_MORE)
            check_fringe(record, static_cast<size_t>(*stated));
    }

    void check_fringe(const tuning_record &record, size_t rows)
    {
        const record_kind &kind = *record.place->kind;
        const size_t count2_end = kind.start + kind.size * rows + sizeof(uint16_t);
        if (record.version >= ISP_FRINGE_COUNT2_SINCE && count2_end > record.size())
            problem(false, record.offset,
                    fmt::format("found version {} without its second count: read as version {}", record.version,
                                ISP_FRINGE_COUNT2_SINCE - 1));
        else if (record.version >= ISP_FRINGE_EXTRA_SINCE &&
                 count2_end + rows * sizeof(isp_fringe_control_extra_row) > record.size())
            problem(false, record.offset,
                    fmt::format("found version {} without its second table: read as version {}", record.version,
                                ISP_FRINGE_EXTRA_SINCE - 1));
    }

    byte_view bytes_;
    std::vector<tuning_problem> problems_;
};

} // namespace

bool tuning_container::has_errors() const
{
    return std::ranges::any_of(problems, &tuning_problem::error);
}

tuning_container read_container(const std::string &file, byte_view bytes)
{
    if (bytes.size() < container_header_size)
        fail({file, "", fmt::format("{} bytes", bytes.size()),
              fmt::format("a container of at least {} bytes", container_header_size)});
    if (read_le<uint32_t>(bytes, 0) != container_tag)
        fail({file, "offset 0", fmt::format("the bytes {}", hex_text(bytes.first(4))), "the tag \"VUXB\" (56555842)"});
    if (bytes.size() > UINT32_MAX)
        fail({file, "", fmt::format("{} bytes", bytes.size()), "at most 4294967295"});

    container_reader reader(bytes);
    tuning_container container;
    container.header = bytes.subspan(4, container_header_size - 4);
    container.list = reader.read_list(container_header_size, bytes.size() - container_header_size, 0);
    container.problems = reader.take_problems();
    std::ranges::stable_sort(container.problems, {}, &tuning_problem::offset);
    return container;
}

std::string problem_text(const tuning_problem &problem)
{
    if (!problem.id)
        return fmt::format("offset {}: {}", problem.offset, problem.text);
    return fmt::format("offset {}, id {}: {}", problem.offset, *problem.id, problem.text);
}

std::optional<int64_t> stated_rows(const tuning_record &record)
{
    if (record.id == rules_id && record.size() >= rules_start)
        return read_le<uint32_t>(record.body, rules_reserved);
    if (!record.place || record.place->kind == nullptr)
        return std::nullopt;
    const record_kind &kind = *record.place->kind;
    if (!kind.has_rows() || record.size() < kind.start)
        return std::nullopt;
    if (kind.has_long_rows())
        return static_cast<int32_t>(read_le<uint32_t>(record.body, long_rows_reserved));
    return read_le<uint16_t>(record.body, ISP_SHORT_ROW_COUNT_AT - record_header_size);
}

} // namespace qz::desk
