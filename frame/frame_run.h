// One frame being computed: what the steps of a run read and where they write. A step writes its block's header, fills
// the payload and appends it to the makernote.
#pragma once

#include <cstdint>

#include "frame/makernote.h"
#include "qz_isp/aic_record.h"
#include "qz_isp/frame.h"
#include "qz_isp/tuning.h"

namespace qz {

struct frame_run {
    const isp_input_params &input;
    const isp_tuning_set &tuning;         // the frame's selection
    const isp_sensor_description *sensor; // null when missing or not usable
    aic_record &record;
    makernote mkn;
    uint16_t gain;    // current gain, 256 = unity
    float saturation; // factor for chroma tone control

    bool nr_on() const { return input.nr_mode != 0; }
    bool bayer_nr_on() const { return input.nr_mode >= 2; }
    bool edge_on() const { return input.edge_mode != 0; }
    bool has_black_levels() const { return input.colour != nullptr && sensor != nullptr; }
};

// color_steps.cpp
void white_balance_step(const frame_run &run);
void yuv_to_rgb_step(const frame_run &run);
void ctc_step(const frame_run &run);
void macc_step(const frame_run &run);
void black_level_step(const frame_run &run);
void gamma_step(const frame_run &run);

// noise_detail_steps.cpp
void defect_pixel_step(const frame_run &run);
void temporal_noise_reduction_step(const frame_run &run);
void y_edge_enhancement_step(const frame_run &run);
void fringe_control_step(const frame_run &run);
void chroma_nr_step(const frame_run &run);
void edge_enhancement_step(const frame_run &run);
void noise_reduction_step(const frame_run &run);
void xnr_step(const frame_run &run);

// driver_steps.cpp
void long_3_step(const frame_run &run);
void rec_3_step(const frame_run &run);
void block_9_step(const frame_run &run);
void rec_13_step(const frame_run &run);
void fixed_blocks_step(const frame_run &run);
void long_5_step(const frame_run &run);
void long_blocks_step(const frame_run &run);
void frame_counter_step(const frame_run &run, uint32_t &counter);

// lens_shading_step.cpp; returns the block's size.
uint32_t lens_shading_step(const frame_run &run);

} // namespace qz
