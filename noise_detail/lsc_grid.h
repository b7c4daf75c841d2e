// The hardware grid of lens shading gains for a frame.
#pragma once

#include <cstdint>

#include "qz_isp/frame.h"
#include "qz_isp/tuning.h"

namespace qz {

struct lsc_grid {
    float cell; // edge of a square cell in pixels of one colour plane: 16, 32 or 64
    uint32_t columns;
    uint32_t rows;
    uint32_t scaled_width; // frame size after scaling, low 16 bits
    uint32_t scaled_height;

    // Entries of one channel's table, at most 65535 in a valid grid. The record has room for fewer, see
    // AIC_LENS_SHADING_MAX_ENTRIES.
    uint32_t entries() const { return columns * rows; }
};

// Any input may be null. False, with the grid unwritten, when lens shading cannot be computed from them: an input other
// than the sensor or a grid of gains is missing, a dimension, scaling denominator or scaled size is 0, or a table would
// have more than 65535 entries.
bool derive_lsc_grid(const isp_sensor_description *sensor, const isp_lsc_params *shading_input,
                     const isp_frame_desc *frame, lsc_grid *grid);

} // namespace qz
