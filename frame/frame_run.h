// One frame being computed: what the steps of a run read and where they write. A step writes its block's header, fills
// the payload and appends it to the makernote.
#pragma once

#include <cstdint>

#include "frame/frame_decisions.h"
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

    bool nr_on() const { return noise_reduction_on(input); }
    bool bayer_nr_on() const { return bayer_noise_reduction_on(input); }
    bool edge_on() const { return edges_on(input); }
    bool has_black_levels() const { return qz::has_black_levels(input.colour, sensor); }
};

// color_steps.cpp
// Returns the block's values, which other blocks copy.
const aic_white_balance &white_balance_step(frame_run &run);
void yuv_to_rgb_step(frame_run &run);
void ctc_step(frame_run &run);
void macc_step(frame_run &run);
void black_level_step(frame_run &run);
void gamma_step(frame_run &run);

// noise_detail_steps.cpp
void defect_pixel_step(frame_run &run, const aic_white_balance &balance);
void temporal_noise_reduction_step(frame_run &run);
void y_edge_enhancement_step(frame_run &run);
void fringe_control_step(frame_run &run);
void chroma_nr_step(frame_run &run);
void edge_enhancement_step(frame_run &run);
void noise_reduction_step(frame_run &run);
void xnr_step(frame_run &run);

// copied_steps.cpp
void rec_3_step(frame_run &run);
void block_9_step(frame_run &run);
void rec_13_step(frame_run &run);
void rec_16_step(frame_run &run);
void frame_counter_step(frame_run &run, uint32_t &counter);

// fixed_steps.cpp
void rgb_to_yuv_step(frame_run &run);
void blocks_21_to_23_step(frame_run &run);

// long_steps.cpp
void long_3_step(frame_run &run, const aic_white_balance &balance);
void long_5_step(frame_run &run);
void long_6_to_12_step(frame_run &run);

// lens_shading_step.cpp; returns the block's size.
uint32_t lens_shading_step(frame_run &run);

} // namespace qz
