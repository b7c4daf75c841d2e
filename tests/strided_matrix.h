// A matrix of floats in any layout, at the very end of its memory; shows whether the bytes between its elements are
// still what they were.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "tests/guarded.h"

enum class layout { dense, transposed, padded, unaligned, rows_upwards, columns_leftwards, spread };

inline constexpr layout every_layout[] = {layout::dense,     layout::transposed,   layout::padded,
                                          layout::unaligned, layout::rows_upwards, layout::columns_leftwards,
                                          layout::spread};

class strided_matrix {
  public:
    strided_matrix(int row_count, int column_count, layout how) : rows(row_count), columns(column_count)
    {
        const bool by_columns = how == layout::transposed;
        const int step = how == layout::spread ? 12 : how == layout::unaligned ? 5 : 4;
        const int line = step * (by_columns ? rows : columns) + (how == layout::padded ? 8 : 0);
        row_stride = by_columns ? step : line;
        column_stride = by_columns ? line : step;
        if (how == layout::rows_upwards)
            first_ = static_cast<size_t>((rows - 1) * row_stride), row_stride = -row_stride;
        if (how == layout::columns_leftwards)
            first_ = static_cast<size_t>((columns - 1) * column_stride), column_stride = -column_stride;
        const int last = (rows - 1) * std::abs(row_stride) + (columns - 1) * std::abs(column_stride);
        bytes_ = std::make_unique<guarded<unsigned char>>(static_cast<size_t>(last) + sizeof(float), filler);
    }

    unsigned char *data() { return bytes_->data() + first_; }

    float at(int row, int column) const
    {
        float value;
        std::memcpy(&value, bytes_->data() + offset(row, column), sizeof value);
        return value;
    }

    void set(int row, int column, float value)
    {
        std::memcpy(bytes_->data() + offset(row, column), &value, sizeof value);
    }

    // Values of very different sizes, so that another order of additions gives another result.
    void fill(std::mt19937 &random)
    {
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < columns; ++c)
                set(r, c, static_cast<float>(static_cast<int32_t>(random())) / static_cast<float>(1u << random() % 30));
    }

    bool padding_untouched() const
    {
        std::vector<unsigned char> rest(bytes_->begin(), bytes_->end());
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < columns; ++c)
                std::fill_n(rest.begin() + static_cast<std::ptrdiff_t>(offset(r, c)), sizeof(float), filler);
        return std::all_of(rest.begin(), rest.end(), [](unsigned char byte) { return byte == filler; });
    }

    int rows, columns;
    int32_t row_stride, column_stride;

  private:
    static constexpr unsigned char filler = 0xa5;

    size_t offset(int row, int column) const
    {
        return static_cast<size_t>(static_cast<int>(first_) + row * row_stride + column * column_stride);
    }

    size_t first_ = 0;
    std::unique_ptr<guarded<unsigned char>> bytes_;
};
