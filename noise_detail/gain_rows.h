// Gain-indexed rows of a tuning record: a u16 count at record byte 8, and rows that each begin with their u16 gain key.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qz_isp/gain.h"
#include "qz_isp/tuning.h"

namespace qz {

// Where a gain lies between two rows.
struct gain_bracket {
    size_t lower; // row numbers
    size_t upper;
    uint16_t lower_key;
    uint16_t upper_key;
    uint16_t gain;
};

// Columns of the two rows around a gain, interpolated. Rows are a struct of the block's own with one member a column.
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

// The rows of a slot; none when the slot is empty. Rows begin with a member `uint16_t key` and need not be sorted.
template <typename Row>
class gain_rows {
  public:
    gain_rows(const isp_record *record, const void *rows) : rows_(static_cast<const Row *>(rows))
    {
        if (record != nullptr && rows != nullptr)
            std::memcpy(&count_, record + 1, sizeof count_);
    }

    explicit gain_rows(const isp_table_slot &slot) : gain_rows(slot.record, slot.data) {}

    bool empty() const { return count_ == 0; }

    // The row with the largest key not above the gain and the one with the smallest key not below it, of equal keys the
    // first; outside the table, the nearer end twice. The table must not be empty.
    row_pair<Row> around(uint16_t gain) const
    {
        const Row *lower = nullptr;
        const Row *upper = nullptr;
        for (const Row *row = rows_; row != rows_ + count_; ++row) {
            if (row->key <= gain && (lower == nullptr || row->key > lower->key))
                lower = row;
            if (row->key >= gain && (upper == nullptr || row->key < upper->key))
                upper = row;
        }
        lower = lower != nullptr ? lower : upper;
        upper = upper != nullptr ? upper : lower;
        return {rows_,
                {static_cast<size_t>(lower - rows_), static_cast<size_t>(upper - rows_), lower->key, upper->key, gain}};
    }

  private:
    const Row *rows_;
    uint16_t count_ = 0;
};

} // namespace qz
