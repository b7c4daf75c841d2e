// Index rules of the nearest-neighbour routines along one axis. Indices never fall, and never leave the source.
#pragma once

#include <algorithm>
#include <cstdint>

namespace qz {

class fixed_point_rule {
  public:
    fixed_point_rule(int32_t src_size, int32_t dst_size)
        : step_(static_cast<uint64_t>(src_size) * 65536 / static_cast<uint64_t>(dst_size) + 1),
          last_(static_cast<uint64_t>(src_size) - 1)
    {}

    // Source index of output position k, counted from 0. The step is rounded up, so far positions overshoot.
    uint32_t operator()(uint32_t k) const { return static_cast<uint32_t>(std::min(k * step_ >> 16, last_)); }

  private:
    uint64_t step_; // 16 fraction bits
    uint64_t last_;
};

class ceiling_rule {
  public:
    ceiling_rule(int32_t src_size, int32_t dst_size)
        : ratio_(static_cast<float>(src_size) / static_cast<float>(dst_size)), last_(src_size - 1)
    {}

    // Source index of output position k, counted from 0: one less than the ratio's multiple k + 1, rounded up.
    uint32_t operator()(uint32_t k) const
    {
        const float position = static_cast<float>(static_cast<int32_t>(k + 1)) * ratio_;
        const auto whole = static_cast<int32_t>(position);
        const bool on_border = whole >= 1 && static_cast<float>(whole) == position;
        return static_cast<uint32_t>(std::min(on_border ? whole - 1 : whole, last_));
    }

  private:
    float ratio_;
    int32_t last_; // an inexact ratio can lead past it
};

} // namespace qz
