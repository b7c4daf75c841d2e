// Gain-indexed tuning tables sampled over the gain, for drawing.
#pragma once

#include <map>
#include <nlohmann/json.hpp>

#include "desk/explain/explain.h"
#include "desk/json/json.h"

namespace qz::desk {

// Frames that select the same record share its curves.
class gain_curves {
  public:
    // The gain-indexed records that a frame's blocks come from: their slots, the numbers of their curves, and their
    // values at the frame's gain.
    json of_frame(const frame_origin &frame);

    // All curves met so far.
    json take() { return std::move(curves_); }

  private:
    size_t number_of(const selected_record &record);

    std::map<const isp_record *, size_t> known_;
    json curves_ = json::array();
};

} // namespace qz::desk
