// How the bytes of the frame target are laid out: a setup, its frames, the samples of curves and grids, and the rest is
// the tuning container. The structures hold the library's own as they are; their pointers do not count.
#pragma once

#include <cstdint>

#include "qz_isp/frame.h"
#include "qz_isp/tuning.h"

namespace fuzz {

struct setup_bytes {
    uint8_t frames;   // less one
    uint8_t flags;    // bits of setup_flag
    uint16_t failing; // modulo 128; 0: no allocation fails, 1: the first one does, and so on
    uint16_t sample_bytes;
    uint16_t entries; // of the characterisation
    isp_sensor_description sensor;
};

enum setup_flag : uint8_t {
    setup_repaired = 1, // the container is repaired
    setup_makernote = 2,
    setup_cmc = 4,
    setup_sensor = 8,
    setup_entry_header = 16,
    setup_entry_table = 32,
};

constexpr unsigned max_frames = 4;
constexpr unsigned max_entries = 64;
constexpr unsigned max_points = 1100; // of a curve that is not null
constexpr unsigned max_side = 40;     // of a grid that is not null

// Each pointer of a frame is null unless its bit is set.
enum frame_flag : uint32_t {
    frame_input = 1, // the input itself
    frame_size = 2,
    frame_exposure = 4,
    frame_scene = 8,
    frame_colour = 16,
    frame_aux_size = 32,
    frame_selection_list = 64,
    frame_gamma = 128,
    frame_first_curve = 256,
    frame_curves = 7 * frame_first_curve,
    frame_lsc = 2048,
    frame_first_grid = 4096,
    frame_grids = 15 * frame_first_grid,
};

struct frame_bytes {
    uint32_t flags;
    isp_input_params controls;
    isp_frame_desc size;
    isp_exposure exposure;
    isp_scene_params scene;
    isp_colour_params colour;
    isp_gamma_params gamma;
    isp_lsc_params lsc;
    isp_geometry aux_size;
    uint32_t selection_list;
};

} // namespace fuzz
