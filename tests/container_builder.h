// Builds tuning containers for tests.
#pragma once

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <string_view>
#include <type_traits>
#include <vector>

#include "qz_isp/context.h"

namespace test {

using bytes = std::vector<uint8_t>;

template <typename T>
void append(bytes &to, T value)
{
    static_assert(std::is_trivially_copyable_v<T>);
    to.resize(to.size() + sizeof value);
    std::memcpy(to.data() + to.size() - sizeof value, &value, sizeof value);
}

// A record: its header, then the payload.
inline bytes record(uint16_t id, const bytes &payload, uint8_t version = 100)
{
    bytes made;
    append(made, static_cast<uint32_t>(payload.size() + 8));
    append(made, version);
    append(made, uint8_t{0});
    append(made, id);
    made.insert(made.end(), payload.begin(), payload.end());
    return made;
}

// A record of 16-bit values: of the 320 family, most often a row count and rows.
inline bytes shorts(uint16_t id, std::initializer_list<uint16_t> values, uint8_t version = 100)
{
    bytes payload;
    for (const uint16_t value : values)
        append(payload, value);
    return record(id, payload, version);
}

// A record of the 768 or 1536 family.
inline bytes long_rows(uint16_t id, int32_t rows, const std::vector<int32_t> &values)
{
    bytes payload(8);
    append(payload, rows);
    for (const int32_t value : values)
        append(payload, value);
    return record(id, payload);
}

inline bytes header(std::string_view tag = "VUXB")
{
    bytes made(24);
    std::memcpy(made.data(), tag.data(), 4);
    return made;
}

inline bytes join(std::initializer_list<bytes> parts)
{
    bytes all;
    for (const bytes &part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

// A set container record for a set index, tagged (with a header of its own) or not.
inline bytes set_container(uint16_t set_index, const bytes &records, bool tagged = false)
{
    return record(static_cast<uint16_t>(64512 + set_index), tagged ? join({header(), records}) : records);
}

struct rule {
    uint16_t kind;
    uint16_t op;
    uint16_t set_index;
    double threshold;
};

inline bytes rules(const std::vector<rule> &all)
{
    bytes payload(4);
    append(payload, static_cast<uint32_t>(all.size()));
    for (const rule &one : all) {
        append(payload, one.kind);
        append(payload, one.op);
        append(payload, one.set_index);
        append(payload, uint16_t{0});
        append(payload, one.threshold);
    }
    return record(709, payload);
}

// A container whose bytes live in a block of exactly their size.
class container {
  public:
    explicit container(const bytes &records, const bytes &start = header()) : bytes_(join({start, records}))
    {
        bytes_.shrink_to_fit();
    }

    const isp_blob *blob()
    {
        blob_ = {bytes_.data(), static_cast<uint32_t>(bytes_.size())};
        return &blob_;
    }

  private:
    bytes bytes_;
    isp_blob blob_ = {};
};

// A bare context that isp_parse() has filled, with the container that it refers to.
struct parsed {
    container from;
    isp_context context = {};
    uint32_t status = 0;

    explicit parsed(const bytes &records, const bytes &start = header()) : from(records, start)
    {
        status = isp_parse(from.blob(), &context);
    }
    ~parsed() { isp_parse_deinit(&context); }
    parsed(const parsed &) = delete;
    parsed &operator=(const parsed &) = delete;

    const isp_tuning_set &set(int which, int index = 0) const { return context.tuning_sets[which][index]; }
};

} // namespace test
