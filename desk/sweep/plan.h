// Frames over ranges of their inputs: the rows that are to be computed, and each of them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "desk/explain/explain.h"
#include "desk/makernote/handle.h"
#include "desk/run/session.h"
#include "desk/scene/frame_choice.h"
#include "desk/sweep/columns.h"
#include "desk/sweep/ranges.h"
#include "desk/sweep/shard.h"

namespace qz::desk {

struct sweep_choice {
    std::vector<std::string> over;     // see sweep_ranges
    std::optional<std::string> fields; // see choose_columns()
    std::optional<std::string> frame;  // to start from, see choose_frames()
    std::vector<std::string> settings; // of those frames, see apply_settings()
    std::optional<std::string> shard;  // see shard_rows()
};

class sweep_plan {
  public:
    // tuning_name: what messages call the container.
    sweep_plan(const sweep_choice &choice, scene setup, byte_buffer container, const std::string &tuning_name);
    sweep_plan(const sweep_plan &) = delete;
    sweep_plan &operator=(const sweep_plan &) = delete;

    // The frames run slowest; every row tells its own where they were chosen as all of the scene.
    const frame_choice &frames() const { return frames_; }
    bool tells_frames() const { return tells_frames_; }
    const std::string &frame_name(size_t frame) const { return setup_.frames[frame].name; }
    const std::vector<sweep_range> &ranges() const { return ranges_.front().ranges(); }
    // The same, setting the values of a row's frame.
    const std::vector<sweep_range> &ranges_of(uint64_t row) const { return ranges_[range_set(row)].ranges(); }
    const std::vector<sweep_column> &columns() const { return columns_; }
    const row_span &rows() const { return rows_; }
    bool holds_all_rows() const { return rows_.first == 0 && rows_.last == ranges_.size() * ranges_.front().rows(); }

    // The frame of a row, as the scene counts.
    size_t frame_of(uint64_t row) const { return frames_.first + range_set(row); }

    // Gives what the ranges vary the values of a row, and computes what the columns need of it as a context of its own
    // would. What comes back is good until the next row.
    const column_source &compute(uint64_t row);

  private:
    size_t range_set(uint64_t row) const { return static_cast<size_t>(row / ranges_.front().rows()); }

    // A context as it is before any frame.
    void start_over();

    scene setup_;
    byte_buffer container_;
    frame_choice frames_;
    bool tells_frames_;
    std::vector<sweep_ranges> ranges_; // one for each frame
    std::vector<sweep_column> columns_;
    column_needs needs_;
    row_span rows_;
    makernote_handle makernote_;
    isp_session session_;
    std::optional<explainer> explainer_;
    column_source source_;
};

} // namespace qz::desk
