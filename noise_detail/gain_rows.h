// Gain-indexed rows of a tuning record: a u16 count at record byte 8, and rows that each begin with their u16 gain key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "qz_isp/gain.h"
#include "qz_isp/tuning.h"
#include "tuning/record_view.h"
#include "util/gain_bracket.h"

namespace qz {

// Where a gain lies between two rows.
struct gain_bracket {
    size_t lower; // row numbers
    size_t upper;
    uint16_t lower_key;
    uint16_t upper_key;
    uint16_t gain;
};

// Columns of the two rows around a gain, interpolated. Rows are the struct of the kind of record.
template <typename Row>
class row_pair {
  public:
    row_pair(const Row *rows, const gain_bracket &bracket)
        : lower_(rows + bracket.lower), upper_(rows + bracket.upper), bracket_(bracket)
    {}

    // Two's complement where negative: signed columns are, and so is a value between far keys whose product wraps.
    template <typename T>
    uint32_t at(T Row::*column) const
    {
        return between(lower_->*column, upper_->*column);
    }

    template <typename T, size_t count>
    uint32_t at(T (Row::*columns)[count], size_t k) const
    {
        return between((lower_->*columns)[k], (upper_->*columns)[k]);
    }

    // The rows of the same numbers in a second table, which stand at this table's keys.
    template <typename Other>
    row_pair<Other> in(const Other *rows) const
    {
        return {rows, bracket_};
    }

  private:
    uint32_t between(int32_t at_lower, int32_t at_upper) const
    {
        return static_cast<uint32_t>(
            interpolate_linear(bracket_.lower_key, bracket_.upper_key, at_lower, at_upper, bracket_.gain));
    }

    const Row *lower_;
    const Row *upper_;
    gain_bracket bracket_;
};

// The rows of a slot, which need not be sorted; none when the slot is empty.
template <typename Row>
class gain_rows {
  public:
    gain_rows(const isp_record *record, const void *rows) : rows_(short_rows<Row>(record, rows)) {}

    explicit gain_rows(const isp_table_slot &slot) : gain_rows(slot.record, slot.data) {}

    bool empty() const { return rows_.empty(); }

    // The table must not be empty.
    row_pair<Row> around(uint16_t gain) const
    {
        const auto [lower, upper] = rows_around(gain, rows_.size(), [this](size_t row) { return rows_[row].key; });
        return {rows_.data(), {lower, upper, rows_[lower].key, rows_[upper].key, gain}};
    }

  private:
    std::span<const Row> rows_;
};

} // namespace qz
