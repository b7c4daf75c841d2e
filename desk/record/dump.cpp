#include "desk/record/dump.h"

#include <algorithm>
#include <cstring>

#include <fmt/format.h>

#include "desk/base/error.h"

namespace qz::desk {

namespace {

constexpr uint32_t header_size = block_header_size;
constexpr uint32_t bytes_per_gain = shading_channels * sizeof(uint16_t); // one of each channel
constexpr size_t columns_at = offsetof(aic_lens_shading_block, payload.columns);
constexpr size_t rows_at = offsetof(aic_lens_shading_block, payload.rows);

class dump_reader {
  public:
    dump_reader(const std::string &file, byte_view bytes) : file_(file), bytes_(bytes), whole_(holds_whole_records()) {}

    std::vector<record_snapshot> read()
    {
        std::vector<record_snapshot> records;
        for (size_t start = 0; start < bytes_.size() || records.empty(); start += step(records.back()))
            records.push_back(read_record(start));
        return records;
    }

  private:
    // Records of their bytes in use may add up to the size of whole ones, but one follows where the first ends.
    bool holds_whole_records() const
    {
        if (bytes_.size() % AIC_RECORD_SIZE != 0 || bytes_.empty())
            return false;
        const size_t used = AIC_FIXED_SIZE + shading_size(AIC_FIXED_SIZE);
        return !is_record_dump(bytes_.subspan(used));
    }

    size_t step(const record_snapshot &record) const { return whole_ ? AIC_RECORD_SIZE : record.bytes_used; }

    record_snapshot read_record(size_t start) const
    {
        const byte_view rest = bytes_.subspan(start);
        if (rest.size() < AIC_FIXED_SIZE)
            fail_at(start, fmt::format("{} bytes", rest.size()),
                    fmt::format("a record of at least {}", AIC_FIXED_SIZE));
        for (const block_layout &block : record_blocks()) {
            if (!has_shading_tables(block))
                expect_header(start + block.offset, block, block.size);
        }
        const uint32_t used = AIC_FIXED_SIZE + shading_size(start + AIC_FIXED_SIZE);
        // Tables reach beyond the bytes in use, which do not count the fields before them.
        record_snapshot record = {{}, used, static_cast<uint32_t>(whole_ ? AIC_RECORD_SIZE : used)};
        std::memcpy(&record.record, rest.data(), record.bytes_held);
        return record;
    }

    void expect_header(size_t offset, const block_layout &block, uint32_t size) const
    {
        const auto id = word(offset);
        const auto found = word(offset + 4);
        if (id != block.id || found != size)
            fail_at(offset, fmt::format("block {} of size {}", id, found),
                    fmt::format("block {} ({}) of size {}", block.id, block.name, size));
    }

    // 0 when what follows the fixed blocks is not the lens shading block.
    uint32_t shading_size(size_t offset) const
    {
        const block_layout &block = record_blocks().back();
        const size_t rest = bytes_.size() - offset;
        if (rest < header_size || word(offset) != block.id)
            return 0;
        const auto size = word(offset + 4);
        constexpr uint32_t largest = header_size + bytes_per_gain * AIC_LENS_SHADING_MAX_ENTRIES;
        if (size < header_size || size % bytes_per_gain != 0 || size > std::min<size_t>(rest, largest))
            fail_at(offset + 4, fmt::format("a size of {}", size),
                    fmt::format("a multiple of {} up to {} for block {} ({})", bytes_per_gain,
                                std::min<size_t>(rest, largest), block.id, block.name));
        if (size >= AIC_LENS_SHADING_TABLES_OFFSET)
            expect_entries(offset, (size - header_size) / bytes_per_gain);
        return size;
    }

    void expect_entries(size_t offset, uint32_t entries) const
    {
        const auto columns = word(offset + columns_at);
        const auto rows = word(offset + rows_at);
        if (uint64_t{columns} * rows != entries)
            fail_at(offset + columns_at, fmt::format("{} columns and {} rows", columns, rows),
                    fmt::format("{} entries, as the size of the block tells", entries));
    }

    [[noreturn]] void fail_at(size_t offset, std::string found, std::string expected) const
    {
        fail({file_, fmt::format("offset {}", offset), std::move(found), std::move(expected)});
    }

    uint32_t word(size_t offset) const { return read_le<uint32_t>(bytes_, offset); }

    const std::string &file_;
    byte_view bytes_;
    bool whole_;
};

} // namespace

bool is_record_dump(byte_view bytes)
{
    const block_layout &first = record_blocks().front();
    return bytes.size() >= header_size && read_le<uint32_t>(bytes, 0) == first.id &&
           read_le<uint32_t>(bytes, 4) == first.size;
}

std::vector<record_snapshot> read_records(const std::string &file, byte_view bytes)
{
    return dump_reader(file, bytes).read();
}

void append_record(byte_buffer &dump, const record_snapshot &record)
{
    const auto *const start = reinterpret_cast<const uint8_t *>(&record.record);
    dump.insert(dump.end(), start, start + record.bytes_used);
}

} // namespace qz::desk
