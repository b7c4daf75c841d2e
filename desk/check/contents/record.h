// A record of a container as the library reads it, and findings about it.
#pragma once

#include <string>
#include <utility>

#include "desk/base/bytes.h"
#include "desk/check/finding.h"
#include "desk/tuning/layout.h"

namespace qz::desk {

// A record that fills a slot.
struct checked_record {
    const record_kind *kind;
    byte_view bytes; // header included
    size_t offset;   // in the container
    uint16_t id;
    uint8_t version;
    uint8_t set;
    uint16_t set_index;
    size_t rows; // that the library uses; 0 of kinds without

    const uint8_t *row(size_t number) const { return bytes.data() + kind->start + number * kind->size; }
    int32_t key(size_t number) const;
    int64_t value(size_t row, const field &column, size_t element) const
    {
        return integer_at(column, this->row(row), element);
    }
};

checked_record make_checked(byte_view bytes, size_t offset, const record_place &place, uint16_t set_index);

// "tuning:xnr[0/2]"
finding_place place_of(const checked_record &record);
// The same with ".rows[1]".
finding_place place_of(const checked_record &record, size_t row);
// The same with ".param[2]".
finding_place place_of(const checked_record &record, size_t row, const field &column, size_t element);
// Of a record without rows.
finding_place place_of(const checked_record &record, const field &column, size_t element);

// Adds findings with their codes.
class reporter {
  public:
    explicit reporter(const finding_sink &sink) : sink_(sink) {}

    void add(listed_code code, finding_place place, std::string what) const
    {
        add(*code.code, code.code->level, std::move(place), std::move(what));
    }
    void add(listed_code code, severity level, finding_place place, std::string what) const
    {
        add(*code.code, level, std::move(place), std::move(what));
    }
    void add(const finding_code &code, severity level, finding_place place, std::string what) const
    {
        sink_({&code, level, std::move(place), std::move(what)});
    }

  private:
    const finding_sink &sink_;
};

// ", and 3 more"; empty for none.
std::string and_more(size_t count, std::string_view of);

} // namespace qz::desk
