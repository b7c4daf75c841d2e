// The frame run: one list of steps in record order.
#include <algorithm>
#include <cmath>

#include "frame/aic_layout.h"
#include "frame/frame_run.h"
#include "qz_isp/color.h"
#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_isp/frame.h"
#include "qz_isp/gain.h"
#include "util/float_to_int.h"

namespace qz {
namespace {

// 256 = unity; the hardware's gain scale has 16 bits, so that the gain is taken modulo 2^16, whatever its size.
uint16_t current_gain(const isp_exposure *exposure)
{
    if (exposure == nullptr || !(exposure->analog_gain >= 1.0f && exposure->digital_gain >= 1.0f))
        return 256;
    const float gain = exposure->digital_gain * exposure->analog_gain * 256.0f;
    return static_cast<uint16_t>(truncate_to_u32(std::fmod(gain, 65536.0f)));
}

float saturation_factor(const isp_input_params &input)
{
    float factor = 1.0f;
    if (input.colour != nullptr && input.colour->saturation > 0.0f)
        factor = input.colour->saturation;
    compute_saturation_factor(input.saturation, &factor);
    if (input.scene != nullptr && input.scene->saturation_decrement > 0.0f)
        factor = std::max(factor - input.scene->saturation_decrement, 0.0f);
    if ((input.effects & ISP_EFFECT_VIVID) != 0)
        factor *= 1.5f;
    return factor;
}

// Null unless the sensor's bit depth can be worked with: a description that is not usable counts as missing.
const isp_sensor_description *usable_sensor(const isp_cmc *cmc)
{
    const isp_sensor_description *sensor = cmc != nullptr ? cmc->sensor_description : nullptr;
    return sensor != nullptr && sensor->bit_depth >= 1 && sensor->bit_depth <= 31 ? sensor : nullptr;
}

void add_control_records(const makernote &mkn, const isp_input_params &input)
{
    const int8_t controls[9] = {
        input.brightness,
        input.contrast,
        input.hue,
        input.saturation,
        static_cast<int8_t>(calc_shifter(input.effects)),
        static_cast<int8_t>(input.nr_mode),
        input.nr_strength,
        static_cast<int8_t>(input.edge_mode),
        input.sharpness,
    };
    mkn.add(QZ_MKN_I8, 543, controls, 9);
    if (input.frame == nullptr)
        return;
    const isp_frame_desc &frame = *input.frame;
    const uint16_t geometry[8] = {
        frame.size.unused[0],       frame.size.unused[1],         frame.size.width,         frame.size.height,
        frame.horizontal_numerator, frame.horizontal_denominator, frame.vertical_numerator, frame.vertical_denominator,
    };
    mkn.add(QZ_MKN_U16, 544, geometry, 8);
}

// Returns the bytes of the record in use.
uint32_t run_steps(const frame_run &run, uint32_t &frame_counter)
{
    white_balance_step(run);
    defect_pixel_step(run);
    long_3_step(run);
    yuv_to_rgb_step(run);
    temporal_noise_reduction_step(run);
    rec_3_step(run);
    y_edge_enhancement_step(run);
    fringe_control_step(run);
    block_9_step(run);
    chroma_nr_step(run);
    ctc_step(run);
    rec_13_step(run);
    edge_enhancement_step(run);
    macc_step(run);
    noise_reduction_step(run);
    black_level_step(run);
    xnr_step(run);
    fixed_blocks_step(run);
    long_5_step(run);
    long_blocks_step(run);
    frame_counter_step(run, frame_counter);
    gamma_step(run);

    uint32_t bytes_used = AIC_FIXED_SIZE;
    if (run.input.lsc != nullptr && run.input.lsc->enable != 0)
        bytes_used += lens_shading_step(run);
    add_control_records(run.mkn, run.input);
    return bytes_used;
}

} // namespace
} // namespace qz

uint32_t qz_isp_2_7_run(isp_context *context, const isp_input_params *input, isp_output_desc *output)
{
    if (context == nullptr || output == nullptr)
        return ISP_INVALID_ARGUMENT;
    output->record = context->aic_output;
    if (input == nullptr || context->tuning_sets[0] == nullptr)
        return ISP_SUCCESS;

    isp_tuning_set tuning;
    const isp_geometry *frame_size = input->frame != nullptr ? &input->frame->size : nullptr;
    tuningselector(input->tuning_mode, context, &context->rules, frame_size, input->aux_size, context->set_count,
                   input->selection_list, &tuning);
    const qz::frame_run run = {
        .input = *input,
        .tuning = tuning,
        .sensor = qz::usable_sensor(context->cmc),
        .record = *context->aic_output,
        .mkn = qz::makernote(context->makernote),
        .gain = qz::current_gain(input->exposure),
        .saturation = qz::saturation_factor(*input),
    };
    output->bytes_used = qz::run_steps(run, context->frame_counter);
    return ISP_SUCCESS;
}
