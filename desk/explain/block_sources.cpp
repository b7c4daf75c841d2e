#include "desk/explain/block_sources.h"

#include <algorithm>
#include <iterator>

#include "qz_isp/aic_record.h"

namespace qz::desk {

namespace {

using enum control;

constexpr std::array<control_rule, 2> tone = {{{brightness, "exponent of the whole curve"}, //
                                               {contrast, "exponent of the curve's two halves"}}};

constexpr block_source sources[] = {
    {.block = "white_balance", .needs = gate::white_balance, .inputs = "colour.white_balance_gain"},
    {.block = "defect_pixel",
     .needs = gate::always,
     .slot = tuning_slot::defect_pixel_correction,
     .inputs = "gain: the coefficients of white_balance"},
    {.block = "long_3",
     .needs = gate::always,
     .slot = tuning_slot::long_3,
     .inputs = "gain: white_balance's gains with 9 fractional bits"},
    {.block = "yuv_to_rgb", .needs = gate::colour, .inputs = "colour.ccm", .note = note_replaced_matrix},
    {.block = "temporal_noise_reduction",
     .needs = gate::noise_reduction,
     .slot = tuning_slot::temporal_noise_reduction,
     .controls = {{{nr_strength, "factor of param[0]", temporal_noise_reduction_strength}}}},
    {.block = "rec_3", .needs = gate::always, .slot = tuning_slot::rec_3},
    {.block = "y_edge_enhancement",
     .needs = gate::noise_reduction,
     .slot = tuning_slot::y_edge_enhancement,
     .controls = {{{sharpness, "factor of param[0..3]", y_edge_enhancement_strength}}}},
    {.block = "fringe_control",
     .needs = gate::edges,
     .slot = tuning_slot::fringe_control,
     .controls = {{{fringe_sharpness, "part of the way of field_4_to_7 to "}}},
     .note = note_fringe_tail},
    {.block = "block_9", .needs = gate::always, .inputs = "block9_control XOR 1"},
    {.block = "chroma_nr",
     .needs = gate::noise_reduction,
     .slot = tuning_slot::chroma_nr,
     .controls = {{{nr_strength, "factor of field[2..7]", chroma_nr_strength}}},
     .note = note_field_units},
    {.block = "ctc",
     .needs = gate::always,
     .slot = tuning_slot::ctc_config,
     .controls = {{{saturation, "factor of the tuned values"}}},
     .note = note_saturation},
    {.block = "rec_13_a",
     .needs = gate::always,
     .slot = tuning_slot::rec_13,
     .reading = "bytes 10 and 11",
     .note = note_missing_value},
    {.block = "rec_13_b", .needs = gate::always, .slot = tuning_slot::rec_13, .reading = "bytes 8 and 9"},
    {.block = "edge_enhancement",
     .needs = gate::edges,
     .slot = tuning_slot::edge_enhancement,
     .controls = {{{sharpness, "factor of param[0]", edge_enhancement_0_strength},
                   {sharpness, "factor of param[2]", edge_enhancement_2_strength}}}},
    {.block = "macc",
     .needs = gate::always,
     .slot = tuning_slot::macc,
     .controls = {{{hue, "degrees of rotation of every sector"}}},
     .note = note_base_set},
    {.block = "macc_shift",
     .needs = gate::always,
     .slot = tuning_slot::macc,
     .reading = "bit length of macc's largest integer part",
     .note = note_base_set},
    {.block = "noise_reduction",
     .needs = gate::bayer_noise_reduction,
     .slot = tuning_slot::noise_reduction,
     .controls = {{{nr_strength, "factor of param[0..1]", noise_reduction_strength}}}},
    {.block = "black_level", .needs = gate::black_level, .inputs = "colour.black_level and the sensor's bit depth"},
    {.block = "xnr", .needs = gate::noise_reduction, .slot = tuning_slot::xnr},
    {.block = "rgb_to_yuv", .needs = gate::fixed, .inputs = "BT.601 full range"},
    {.block = "rec_16", .needs = gate::always, .slot = tuning_slot::rec_16, .inputs = "all but value[3..5] are fixed"},
    {.block = "block_21", .needs = gate::fixed},
    {.block = "block_22", .needs = gate::fixed},
    {.block = "block_23", .needs = gate::fixed},
    {.block = "long_5",
     .needs = gate::always,
     .slot = tuning_slot::long_5,
     .reading = "curves times the scales of the first row",
     .without_rows = origin::defaults},
    {.block = "long_6", .needs = gate::always, .slot = tuning_slot::long_6, .without_rows = origin::defaults},
    {.block = "long_7", .needs = gate::always, .slot = tuning_slot::long_7},
    {.block = "long_13", .needs = gate::always, .slot = tuning_slot::long_13},
    {.block = "long_11", .needs = gate::always, .slot = tuning_slot::long_11},
    {.block = "long_12", .needs = gate::always, .slot = tuning_slot::long_12},
    {.block = "frame_counter", .needs = gate::counter, .inputs = "frames run before"},
    {.block = "gamma_0",
     .needs = gate::gamma,
     .inputs = "gamma.curve[0]",
     .controls = tone,
     .note = note_gamma_effects,
     .channel = 0},
    {.block = "gamma_1",
     .needs = gate::gamma,
     .inputs = "gamma.curve[1]",
     .controls = tone,
     .note = note_gamma_effects,
     .channel = 1},
    {.block = "gamma_2",
     .needs = gate::gamma,
     .inputs = "gamma.curve[2]",
     .controls = tone,
     .note = note_gamma_effects,
     .channel = 2},
    {.block = "lens_shading", .needs = gate::lens_shading, .inputs = "lsc.grid and frame", .note = note_shading},
};

#define QZ_HAS_SOURCE(name, ...)                                                                                       \
    static_assert(std::ranges::find(sources, #name, &block_source::block) != std::end(sources),                        \
                  "block " #name " has no row in sources");
AIC_BLOCKS(QZ_HAS_SOURCE)
#undef QZ_HAS_SOURCE

#define QZ_NAME(name, ...) std::string_view(#name),
constexpr std::string_view block_names[] = {AIC_BLOCKS(QZ_NAME)};
#undef QZ_NAME
static_assert(std::ranges::equal(sources, block_names, {}, &block_source::block), "sources are in record order");

} // namespace

std::span<const block_source> block_sources()
{
    return sources;
}

} // namespace qz::desk
