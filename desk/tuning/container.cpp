#include "desk/tuning/container.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/tuning/record_problem.h"
#include "qz_isp/error.h"
#include "tuning/record_walk.h"

namespace qz::desk {

namespace {

class container_reader {
  public:
    container_reader(const std::string &file, byte_view bytes) : file_(file), bytes_(bytes) {}

    record_list read_list(size_t start, size_t length, unsigned depth)
    {
        record_list list;
        size_t offset = start;
        const size_t end = start + length;
        // Fewer than 9 bytes are no record, whatever they say.
        while (end - offset > record_header_size) {
            const auto size = read_le<uint32_t>(bytes_, offset);
            if (size < record_header_size || size > end - offset) {
                add(bad_size(size, end - offset), offset);
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
    void add(record_problem problem, size_t offset)
    {
        problems_.push_back({problem.refused, offset, read_le<uint16_t>(bytes_, offset + 6), std::move(problem.text)});
    }

    void check(size_t offset, size_t size)
    {
        if (std::optional<record_problem> problem = find_problem(bytes_.subspan(offset, size)))
            add(std::move(*problem), offset);
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
        check(offset, size);
        if (record.id >= first_set_container_id)
            read_set_container(record, depth);
        return record;
    }

    void read_set_container(tuning_record &record, unsigned depth)
    {
        record.tagged = record.body.size() >= 4 && read_le<uint32_t>(record.body, 0) == container_tag;
        const size_t header_size = record.tagged ? container_header_size : 0;
        if (record.body.size() < header_size)
            return;
        if (depth >= max_nesting) {
            add({"", false, fmt::format("found a set container nested more than {} deep, shown as bytes", max_nesting)},
                record.offset);
            check_nested(record.body.subspan(header_size));
            return;
        }
        record.is_set_container = true;
        if (record.tagged)
            record.header = record.body.subspan(4, container_header_size - 4);
        record.nested =
            read_list(record.offset + record_header_size + header_size, record.body.size() - header_size, depth + 1);
    }

    // Records that are not kept.
    void check_nested(byte_view records)
    {
        const auto offset_of = [&](const uint8_t *place) { return static_cast<size_t>(place - bytes_.data()); };
        const auto check_record = [&](const walked_record &record) -> uint32_t {
            check(offset_of(record.bytes), record.size);
            return ISP_SUCCESS;
        };
        const auto check_size = [&](const uint8_t *place, uint32_t left) -> uint32_t {
            const auto size = value_at<uint32_t>(place, offsetof(isp_record, size));
            if (!holds_record({place, left}, size))
                add(bad_size(size, left), offset_of(place));
            return ISP_SUCCESS;
        };
        if (walk({records.data(), static_cast<uint32_t>(records.size())}, check_record, check_size) != ISP_SUCCESS)
            fail({file_, "", "out of memory", ""});
    }

    const std::string &file_;
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

    container_reader reader(file, bytes);
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
