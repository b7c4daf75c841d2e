#include "desk/tuning/container.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/tuning/record_problem.h"
#include "qz_isp/error.h"
#include "tuning/record_walk.h"

namespace qz::desk {

namespace {

void read_set_container(tuning_record &record, unsigned depth)
{
    record.tagged = record.body.size() >= 4 && read_le<uint32_t>(record.body, 0) == container_tag;
    const size_t header_size = record.tagged ? container_header_size : 0;
    record.is_set_container = record.body.size() >= header_size && depth < max_nesting;
    if (!record.is_set_container)
        return;
    if (record.tagged)
        record.header = record.body.subspan(4, container_header_size - 4);
    record.nested =
        record_list(record.body.subspan(header_size), record.offset + record_header_size + header_size, depth + 1);
}

// Walks the records and notes what is wrong with them.
class problem_finder {
  public:
    problem_finder(const std::string &file, byte_view bytes) : file_(file), bytes_(bytes) {}

    void check(const record_list &list, unsigned depth)
    {
        record_iterator next = list.begin();
        for (; next != list.end(); ++next)
            check_record(*next, depth);
        // Fewer than 9 bytes are no record, whatever they say.
        if (next.rest().size() > record_header_size)
            add(bad_size(read_le<uint32_t>(next.rest(), 0), next.rest().size()), next.offset());
    }

    std::vector<tuning_problem> problems;

  private:
    void add(record_problem problem, size_t offset)
    {
        problems.push_back({problem.refused, offset, read_le<uint16_t>(bytes_, offset + 6), std::move(problem.text)});
    }

    void check_bytes(size_t offset, size_t size)
    {
        if (std::optional<record_problem> problem = find_problem(bytes_.subspan(offset, size)))
            add(std::move(*problem), offset);
    }

    void check_record(const tuning_record &record, unsigned depth)
    {
        check_bytes(record.offset, record.size());
        if (record.is_set_container) {
            check(record.nested, depth + 1);
        } else if (record.id >= first_set_container_id && depth >= max_nesting) {
            add({"", false, fmt::format("found a set container nested more than {} deep, shown as bytes", max_nesting)},
                record.offset);
            check_nested(record);
        }
    }

    // The records of a set container that is kept as bytes.
    void check_nested(const tuning_record &set_container)
    {
        const auto offset_of = [&](const uint8_t *place) { return static_cast<size_t>(place - bytes_.data()); };
        const auto check_record = [&](const walked_record &record) -> uint32_t {
            check_bytes(offset_of(record.bytes), record.size);
            return ISP_SUCCESS;
        };
        const auto check_size = [&](const uint8_t *place, uint32_t left) -> uint32_t {
            const auto size = value_at<uint32_t>(place, offsetof(isp_record, size));
            if (!holds_record({place, left}, size))
                add(bad_size(size, left), offset_of(place));
            return ISP_SUCCESS;
        };
        qz::record_list nested = {};
        if (nested_list(&bytes_[set_container.offset], static_cast<uint32_t>(set_container.size()), nested) &&
            walk(nested, check_record, check_size) != ISP_SUCCESS)
            fail({file_, "", "out of memory", ""});
    }

    const std::string &file_;
    byte_view bytes_;
};

} // namespace

bool record_iterator::operator==(std::default_sentinel_t) const
{
    if (rest_.size() <= record_header_size)
        return true;
    const auto size = read_le<uint32_t>(rest_, 0);
    return size < record_header_size || size > rest_.size();
}

record_iterator &record_iterator::operator++()
{
    const auto size = read_le<uint32_t>(rest_, 0);
    rest_ = rest_.subspan(size);
    offset_ += size;
    return *this;
}

tuning_record record_iterator::operator*() const
{
    tuning_record record = {};
    record.offset = offset_;
    record.version = rest_[4];
    record.unread = rest_[5];
    record.id = read_le<uint16_t>(rest_, 6);
    record.body = rest_.subspan(record_header_size, read_le<uint32_t>(rest_, 0) - record_header_size);
    record.place = find_place(record.id);
    if (record.id >= first_set_container_id)
        read_set_container(record, depth_);
    return record;
}

byte_view record_list::trailing() const
{
    record_iterator next = begin();
    while (next != end())
        ++next;
    return next.rest();
}

bool tuning_container::has_errors() const
{
    return std::ranges::any_of(problems, &tuning_problem::error);
}

void expect_container(const std::string &file, byte_view bytes)
{
    if (bytes.size() < container_header_size)
        fail({file, "", fmt::format("{} bytes", bytes.size()),
              fmt::format("a container of at least {} bytes", container_header_size)});
    if (read_le<uint32_t>(bytes, 0) != container_tag)
        fail({file, "offset 0", fmt::format("the bytes {}", hex_text(bytes.first(4))), "the tag \"VUXB\" (56555842)"});
    if (bytes.size() > UINT32_MAX)
        fail({file, "", fmt::format("{} bytes", bytes.size()), "at most 4294967295"});
}

tuning_container container_of(byte_view bytes)
{
    return {bytes.subspan(4, container_header_size - 4),
            record_list(bytes.subspan(container_header_size), container_header_size, 0),
            {}};
}

tuning_container read_container(const std::string &file, byte_view bytes)
{
    expect_container(file, bytes);
    tuning_container container = container_of(bytes);
    problem_finder finder(file, bytes);
    finder.check(container.list, 0);
    container.problems = std::move(finder.problems);
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
