// The two source rows around an output row, each resampled to the output's columns once and kept while it is needed.
#pragma once

#include <cstdint>
#include <utility>

namespace qz {

template <typename Row>
class row_pair {
  public:
    // Calls make(source row, Row &) for the rows that are not at hand.
    template <typename Make>
    void move_to(uint32_t above, uint32_t below, Make make)
    {
        if (above_index_ != above && below_index_ == above) {
            std::swap(above_, below_);
            std::swap(above_index_, below_index_);
        }
        if (above_index_ != above)
            make(above_index_ = above, *above_);
        if (below_index_ != below)
            make(below_index_ = below, *below_);
    }

    const Row &above() const { return *above_; }

    const Row &below() const { return *below_; }

  private:
    Row rows_[2];
    Row *above_ = &rows_[0];
    Row *below_ = &rows_[1];
    uint32_t above_index_ = UINT32_MAX;
    uint32_t below_index_ = UINT32_MAX;
};

} // namespace qz
