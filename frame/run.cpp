// The frame run: one list of steps in record order.
#include "frame/aic_layout.h"
#include "frame/frame_decisions.h"
#include "frame/frame_run.h"
#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_isp/frame.h"
#include "qz_isp/gain.h"

namespace qz {
namespace {

void add_control_records(const makernote &mkn, const isp_input_params &input)
{
    const int8_t controls[] = {
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
    mkn.add<ISP_MAKERNOTE_MANUAL_CONTROLS>(controls);
    if (input.frame == nullptr)
        return;
    const isp_frame_desc &frame = *input.frame;
    const uint16_t geometry[] = {
        frame.size.unused[0],       frame.size.unused[1],         frame.size.width,         frame.size.height,
        frame.horizontal_numerator, frame.horizontal_denominator, frame.vertical_numerator, frame.vertical_denominator,
    };
    mkn.add<ISP_MAKERNOTE_FRAME_GEOMETRY>(geometry);
}

// Returns the bytes of the record in use.
uint32_t run_steps(frame_run &run, uint32_t &frame_counter)
{
    const aic_white_balance &balance = white_balance_step(run);
    defect_pixel_step(run, balance);
    long_3_step(run, balance);
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
    rgb_to_yuv_step(run);
    rec_16_step(run);
    blocks_21_to_23_step(run);
    long_5_step(run);
    long_6_to_12_step(run);
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
    qz::frame_run run = {
        .input = *input,
        .tuning = tuning,
        .sensor = qz::usable_sensor(context->cmc),
        .record = *context->aic_output,
        .mkn = qz::makernote(context->makernote),
        .gain = qz::current_gain(input->exposure),
        .saturation = qz::saturation_factor(input->colour, input->scene, input->saturation, input->effects),
    };
    output->bytes_used = qz::run_steps(run, context->frame_counter);
    return ISP_SUCCESS;
}
