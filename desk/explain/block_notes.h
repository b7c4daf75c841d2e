// What of a block's origin differs from frame to frame beyond its record, rows and controls.
#pragma once

#include "desk/explain/origin.h"

namespace qz::desk {

// What a frame was computed from.
struct frame_facts {
    const frame_inputs &inputs;
    const isp_sensor_description *sensor; // null when missing or not usable
    const isp_tuning_set &tuning;         // the frame's selection
    const record_snapshot &record;
    const frame_origin &origin; // all but its blocks
};

// Adds to the reasons of a block that was computed.
using note_writer = void (*)(const frame_facts &frame, block_origin &block);

void note_replaced_matrix(const frame_facts &frame, block_origin &block);
void note_saturation(const frame_facts &frame, block_origin &block);
void note_missing_value(const frame_facts &frame, block_origin &block);
void note_base_set(const frame_facts &frame, block_origin &block);
void note_fringe_tail(const frame_facts &frame, block_origin &block);
void note_field_units(const frame_facts &frame, block_origin &block);
void note_gamma_effects(const frame_facts &frame, block_origin &block);
void note_shading(const frame_facts &frame, block_origin &block);

} // namespace qz::desk
