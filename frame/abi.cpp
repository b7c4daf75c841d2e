// The interface's layout where addresses have 32 bits: consumers built apart from the library rely on it to the byte.
#include <cstddef>

#include "qz_isp/context.h"
#include "qz_isp/frame.h"
#include "qz_isp/statistics.h"
#include "qz_isp/tuning.h"

namespace {

constexpr bool wide = sizeof(void *) != 4;

constexpr size_t word(size_t index)
{
    return index * 4;
}

#define QZ_SIZE(type, size) static_assert(wide || sizeof(type) == (size))
#define QZ_OFFSET(type, field, offset) static_assert(wide || offsetof(type, field) == (offset))

QZ_SIZE(isp_context, 56);
QZ_OFFSET(isp_context, cmc, 12);
QZ_OFFSET(isp_context, rgbs_grid, 16);
QZ_OFFSET(isp_context, af_grid, 20);
QZ_OFFSET(isp_context, aic_output, 24);
QZ_OFFSET(isp_context, makernote, 28);
QZ_OFFSET(isp_context, mkn_key, 32);
QZ_OFFSET(isp_context, rules, 36);
QZ_OFFSET(isp_context, frame_counter, 44);
QZ_OFFSET(isp_context, set_count, 48);
QZ_OFFSET(isp_context, grid_capacity, 52);

QZ_SIZE(isp_blob, 8);
QZ_OFFSET(isp_blob, size, 4);
QZ_SIZE(isp_record, 8);
QZ_OFFSET(isp_record, version, 4);
QZ_OFFSET(isp_record, id, 6);
QZ_SIZE(isp_rule_ref, 8);
QZ_SIZE(isp_tuning_set, 200);

QZ_SIZE(isp_cmc, 20);
QZ_OFFSET(isp_cmc, sensor_description, 8);
QZ_OFFSET(isp_cmc, entry_table_header, 12);
QZ_OFFSET(isp_cmc, entry_table, 16);
QZ_SIZE(isp_sensor_description, 16);
QZ_OFFSET(isp_sensor_description, width, 8);
QZ_OFFSET(isp_sensor_description, height, 10);
QZ_OFFSET(isp_sensor_description, bit_depth, 12);
QZ_SIZE(isp_entry_table_header, 12);
QZ_OFFSET(isp_entry_table_header, entry_count, 8);

QZ_SIZE(isp_stats, 44);
QZ_OFFSET(isp_stats, width, 12);
QZ_OFFSET(isp_stats, height, 16);
QZ_OFFSET(isp_stats, af_block_size, 28);
QZ_OFFSET(isp_stats, cell_size_exponent, 32);
QZ_OFFSET(isp_stats, bit_depth, 36);
QZ_OFFSET(isp_stats, cells, 40);
QZ_SIZE(isp_stats_cell, 32);
QZ_OFFSET(isp_stats_cell, count, 4);
QZ_OFFSET(isp_stats_cell, channel_sum, 8);
QZ_OFFSET(isp_stats_cell, filter_1_response, 24);
QZ_SIZE(isp_rgbs_cell, 5);
QZ_SIZE(rgbs_grid_desc, 8);
QZ_OFFSET(rgbs_grid_desc, width, 4);
QZ_SIZE(af_grid_desc, 16);
QZ_OFFSET(af_grid_desc, block_width, 4);
QZ_OFFSET(af_grid_desc, filter_1, 8);

QZ_SIZE(isp_input_params, word(17));
QZ_OFFSET(isp_input_params, frame, word(1));
QZ_OFFSET(isp_input_params, exposure, word(2));
QZ_OFFSET(isp_input_params, scene, word(3));
QZ_OFFSET(isp_input_params, gamma, word(4));
QZ_OFFSET(isp_input_params, colour, word(5));
QZ_OFFSET(isp_input_params, lsc, word(6));
QZ_OFFSET(isp_input_params, gamma_257, word(7));
QZ_OFFSET(isp_input_params, nr_mode, word(8));
QZ_OFFSET(isp_input_params, nr_strength, word(9));
QZ_OFFSET(isp_input_params, edge_mode, word(10));
QZ_OFFSET(isp_input_params, sharpness, word(11));
QZ_OFFSET(isp_input_params, brightness, word(12));
QZ_OFFSET(isp_input_params, saturation, word(12) + 3);
QZ_OFFSET(isp_input_params, effects, word(13));
QZ_OFFSET(isp_input_params, block9_control, word(14));
QZ_OFFSET(isp_input_params, aux_size, word(15));
QZ_OFFSET(isp_input_params, selection_list, word(16));
QZ_SIZE(isp_output_desc, 8);
QZ_SIZE(isp_geometry, 8);
QZ_SIZE(isp_frame_desc, 12);
QZ_OFFSET(isp_frame_desc, horizontal_numerator, 8);
QZ_OFFSET(isp_exposure, analog_gain, word(1));
QZ_OFFSET(isp_exposure, digital_gain, word(2));
QZ_OFFSET(isp_scene_params, macc_target, word(4));
QZ_OFFSET(isp_scene_params, saturation_decrement, word(5));
QZ_OFFSET(isp_colour_params, black_level, word(9));
QZ_OFFSET(isp_colour_params, white_balance_gain, word(13));
QZ_OFFSET(isp_colour_params, saturation, word(22));
QZ_OFFSET(isp_colour_params, gamma_parameter, word(23));
QZ_OFFSET(isp_gamma_params, point_count, 12);
QZ_OFFSET(isp_lsc_params, width, 16);
QZ_OFFSET(isp_lsc_params, height, 18);
QZ_OFFSET(isp_lsc_params, enable, 20);

} // namespace
