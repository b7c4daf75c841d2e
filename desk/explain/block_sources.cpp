#include "block_sources.h"

namespace qz::tool {

namespace {

const block_source sources[] = {
    {"white_balance", "", gate::white_balance, "colour.white_balance_gain"},
    {"defect_pixel", "defect_pixel_correction", gate::always, "gain: the coefficients of white_balance"},
    {"long_3", "long_3", gate::always, "gain: white_balance's gains with 9 fractional bits"},
    {"yuv_to_rgb", "", gate::colour, "colour.ccm"},
    {"temporal_noise_reduction",
     "temporal_noise_reduction",
     gate::noise_reduction,
     "",
     {{control::nr_strength, 5.0, 0.2, "factor of param[0]"}}},
    {"rec_3", "rec_3", gate::always, ""},
    {"y_edge_enhancement",
     "y_edge_enhancement",
     gate::noise_reduction,
     "",
     {{control::sharpness, 5.0, 0.2, "factor of param[0..3]", 8191}}},
    {"fringe_control", "fringe_control", gate::edges, "", {{control::fringe_sharpness, 0, 0, ""}}},
    {"block_9", "", gate::always, "block9_control XOR 1"},
    {"chroma_nr",
     "chroma_nr",
     gate::noise_reduction,
     "",
     {{control::nr_strength, 0.2, 5.0, "factor of field[2..7]", 8191}}},
    {"ctc", "ctc_config", gate::always, "", {{control::saturation, 0, 0, "factor of the tuned values"}}},
    {"rec_13_a", "rec_13", gate::always, "", {}, "bytes 10 and 11, which count as 0 in version 100"},
    {"rec_13_b", "rec_13", gate::always, "", {}, "bytes 8 and 9"},
    {"edge_enhancement",
     "edge_enhancement",
     gate::edges,
     "",
     {{control::sharpness, 3.0, 0.333, "factor of param[0]"}, {control::sharpness, 2.0, 0.5, "factor of param[2]"}}},
    {"macc", "macc", gate::always, "", {{control::hue, 0, 0, "degrees of rotation of every sector"}}},
    {"macc_shift", "macc", gate::always, "", {}, "bit length of macc's largest integer part"},
    {"noise_reduction",
     "noise_reduction",
     gate::bayer_noise_reduction,
     "",
     {{control::nr_strength, 5.0, 0.2, "factor of param[0..1]", 65535}}},
    {"black_level", "", gate::black_level, "colour.black_level and the sensor's bit depth"},
    {"xnr", "xnr", gate::noise_reduction, ""},
    {"rgb_to_yuv", "", gate::fixed, "BT.601 full range"},
    {"rec_16", "rec_16", gate::always, "all but value[3..5] are fixed"},
    {"block_21", "", gate::fixed, ""},
    {"block_22", "", gate::fixed, ""},
    {"block_23", "", gate::fixed, ""},
    {"long_5", "long_5", gate::always, "", {}, "curves times the scales of the first row"},
    {"long_6", "long_6", gate::always, ""},
    {"long_7", "long_7", gate::always, ""},
    {"long_13", "long_13", gate::always, ""},
    {"long_11", "long_11", gate::always, ""},
    {"long_12", "long_12", gate::always, ""},
    {"frame_counter", "", gate::counter, "frames run before"},
    {"gamma_0", "", gate::gamma, "gamma.curve[0]", {{control::tone, 0, 0, ""}}},
    {"gamma_1", "", gate::gamma, "gamma.curve[1]", {{control::tone, 0, 0, ""}}},
    {"gamma_2", "", gate::gamma, "gamma.curve[2]", {{control::tone, 0, 0, ""}}},
    {"lens_shading", "", gate::lens_shading, "lsc.grid and frame"},
};

} // namespace

std::span<const block_source> block_sources()
{
    return sources;
}

} // namespace qz::tool
