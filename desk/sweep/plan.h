// A frame over ranges of its inputs: the rows that are to be computed, and each of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desk/run/session.h"
#include "desk/sweep/columns.h"
#include "desk/sweep/ranges.h"
#include "desk/sweep/shard.h"

namespace qz::desk {

struct sweep_choice {
    std::vector<std::string> over;     // see sweep_ranges
    std::optional<std::string> fields; // see choose_columns()
    std::optional<std::string> frame;  // one to start from; the last
    std::vector<std::string> settings; // of that frame, see apply_settings()
    std::optional<std::string> shard;  // see shard_rows()
};

class sweep_plan {
  public:
    // Varies the chosen frame and the container in place: they must stay where they are.
    sweep_plan(const sweep_choice &choice, scene &scene, byte_buffer &container);

    const std::vector<sweep_range> &ranges() const { return ranges_.ranges(); }
    const std::vector<sweep_column> &columns() const { return columns_; }
    const row_span &rows() const { return rows_; }

    // Gives what the ranges vary the values of a row, and computes its record as a context of its own would. The
    // session has the container.
    record_snapshot compute(uint64_t row, isp_session &session) const;

  private:
    frame_inputs &inputs_;
    const byte_buffer &container_;
    sweep_ranges ranges_;
    std::vector<sweep_column> columns_;
    row_span rows_;
};

} // namespace qz::desk
