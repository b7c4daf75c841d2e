// One context of the library and the frames run through it.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "desk/base/bytes.h"
#include "desk/record/layout.h"
#include "desk/scene/scene.h"
#include "qz_mkn.h"

namespace qz::desk {

// What of a frame is computed: the dear blocks need not be.
struct frame_parts {
    bool gamma = true; // the three tables
    bool shading = true;
};

class isp_session {
  public:
    // tuning_name is what messages call the container; set-up and makernote, or null, must outlive the session.
    isp_session(byte_buffer container, std::string tuning_name, const scene &setup, qz_mkn *makernote = nullptr);

    // The record after the frame.
    record_snapshot run(const frame_inputs &inputs);

    // The same for some parts. Of the snapshot only what is asked for is the frame's.
    void run(const frame_inputs &inputs, const frame_parts &parts, record_snapshot &snapshot);

    // A new context with another container, for the same set-up.
    void load(const byte_buffer &container);

    // What a new context would have: nothing is left of the frames before, nor in the makernote.
    void forget_frames();
    // The same, but that the makernote stays as it is.
    void forget_records();

    // The records that the library selects for the frame; they are the context's.
    isp_tuning_set selection(const frame_inputs &inputs) const;

    const isp_context &context() const { return *context_; }
    byte_view container() const { return container_; }
    const std::string &tuning_name() const { return tuning_name_; }

  private:
    struct context_deleter {
        void operator()(isp_context *context) const { qz_isp_2_7_deinit(context); }
    };

    void open();
    void expect_memory() const; // since errno was 0
    void open_again();

    const scene &setup_;
    qz_mkn *makernote_;
    byte_buffer container_;
    std::string tuning_name_;
    std::unique_ptr<isp_context, context_deleter> context_;
    uint32_t written_ = 0; // bytes of the context's record that frames have reached
};

} // namespace qz::desk
