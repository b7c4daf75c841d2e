// One of two tunings that are compared: a scene's frames in order through one context, or one frame over ranges of its
// inputs.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/compare/run_result.h"
#include "desk/explain/origin.h"
#include "desk/makernote/handle.h"
#include "desk/run/session.h"
#include "desk/sweep/ranges.h"

namespace qz::desk {

struct side_choice {
    std::optional<std::string> frame;  // else all of them; over ranges the last
    std::vector<std::string> settings; // of those frames and of the tuning, see apply_settings()
    std::vector<std::string> changes;  // settings too, of the new side
    std::vector<std::string> over;     // see sweep_ranges
};

// A frame of the scene, or a row of ranges.
struct run_place {
    uint64_t number;
    std::string name;                                        // of a frame
    std::vector<std::pair<std::string, std::string>> inputs; // of a row: names and values; none of a frame
};

class compared_side {
  public:
    // name: what messages call the tuning.
    compared_side(std::string name, byte_buffer container, scene inputs, const side_choice &choice);
    compared_side(const compared_side &) = delete;
    compared_side &operator=(const compared_side &) = delete;

    // Numbers of frames or rows.
    uint64_t first() const { return first_; }
    uint64_t last() const { return last_; } // one past the last
    bool has_rows() const { return ranges_.has_value(); }
    run_place place(uint64_t number) const;
    const std::string &name() const { return session_->tuning_name(); }
    const byte_buffer &container() const { return container_; }

    // A row, as a context of its own gives it, or a frame after those before it; cheapest in ascending order.
    const run_result &run(uint64_t number);
    // Where the values of the last run came from.
    frame_origin explain() const;

  private:
    void expect_unvaried(const std::vector<std::string> &changes);
    const frame_inputs &prepare(uint64_t number);

    scene scene_;
    byte_buffer container_;
    uint64_t first_;
    uint64_t last_;
    size_t varied_frame_ = 0;
    std::optional<sweep_ranges> ranges_;
    makernote_handle makernote_;
    std::optional<isp_session> session_;
    uint64_t next_ = 0;                    // frame of the context
    const frame_inputs *inputs_ = nullptr; // of the last run
    run_result result_ = {};
};

} // namespace qz::desk
