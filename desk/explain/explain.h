// What the library selected and took into account for a frame.
#pragma once

#include <vector>

#include "desk/explain/origin.h"

namespace qz::desk {

// Explains the frames of a session, which must outlive it.
class explainer {
  public:
    explicit explainer(const isp_session &session) : session_(session), filed_(session) {}

    // Selects again what the library selected for the frame that gave the record, and works out the rest from the
    // inputs; nothing about the session changes. wanted: which blocks, as in record_blocks(), the others stay empty;
    // all where it is empty.
    frame_origin explain(const frame_inputs &inputs, const record_snapshot &record,
                         const std::vector<bool> &wanted = {}) const;

  private:
    const isp_session &session_;
    filed_records filed_;
};

} // namespace qz::desk
