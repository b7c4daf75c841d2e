// Steps of a frame run: gain-indexed noise and detail blocks.
#include <algorithm>
#include <iterator>

#include "frame/aic_layout.h"
#include "frame/defaults.h"
#include "frame/frame_run.h"
#include "qz_isp/noise_detail.h"

namespace qz {
namespace {

// A block that is switched by a mode: computed, or default values without a tuning record. Off, it has values of its
// own and no makernote record.
template <isp_makernote_record name, typename Block, typename Slot, typename Payload, typename Compute>
void tuned_step(frame_run &run, Block &block, const Slot &slot, const Payload &untuned, bool on, const Payload &off,
                Compute compute)
{
    write_header(block);
    if (!on) {
        block.payload = off;
        return;
    }
    if (slot.record != nullptr)
        compute(slot, block.payload);
    else
        block.payload = untuned;
    run.mkn.add<name>(block.payload);
}

void add_fringe_control(const makernote &mkn, const aic_fringe_control &block)
{
    int32_t words[13] = {block.exponent};
    int32_t *next = words + 1;
    next = std::copy(std::begin(block.field_4_to_7), std::end(block.field_4_to_7), next);
    next = std::copy(std::begin(block.field_8_to_9), std::end(block.field_8_to_9), next);
    next = std::copy(std::begin(block.field_10_to_11), std::end(block.field_10_to_11), next);
    std::copy(std::begin(block.field_0_to_3), std::end(block.field_0_to_3), next);
    mkn.add<ISP_MAKERNOTE_FRINGE_CONTROL>(words);
}

} // namespace

void defect_pixel_step(frame_run &run, const aic_white_balance &balance)
{
    auto &block = run.record.defect_pixel;
    write_header(block);
    auto &[param, gain] = block.payload;
    if (run.tuning.defect_pixel_correction.record != nullptr)
        compute_defect_pixel_correction(run.gain, &run.tuning.defect_pixel_correction, &param[0], &param[1]);
    else
        std::copy(std::begin(defaults::defect_pixel), std::end(defaults::defect_pixel), param);
    std::copy(std::begin(balance.gain), std::end(balance.gain), gain);
    run.mkn.add<ISP_MAKERNOTE_DEFECT_PIXEL>(block.payload);
}

void temporal_noise_reduction_step(frame_run &run)
{
    tuned_step<ISP_MAKERNOTE_TEMPORAL_NOISE_REDUCTION>(
        run, run.record.temporal_noise_reduction, run.tuning.temporal_noise_reduction,
        defaults::temporal_noise_reduction, run.nr_on(), defaults::temporal_noise_reduction_off,
        [&run](const isp_table_slot &slot, aic_params_3 &out) {
            auto &[p0, p1, p2] = out.param;
            compute_temporal_noise_reduction(run.gain, &slot, run.input.nr_strength, &p0, &p1, &p2);
        });
}

void y_edge_enhancement_step(frame_run &run)
{
    tuned_step<ISP_MAKERNOTE_Y_EDGE_ENHANCEMENT>(
        run, run.record.y_edge_enhancement, run.tuning.y_edge_enhancement, defaults::y_edge_enhancement, run.nr_on(),
        defaults::y_edge_enhancement_off, [&run](const isp_table_slot &slot, aic_y_edge_enhancement &out) {
            auto &[p0, p1, p2, p3] = out.param;
            compute_y_edge_enhancement(run.gain, &slot, run.input.sharpness, &p0, &p1, &p2, &p3);
        });
}

// The byte that the block does not use keeps what it holds, except when the block is off.
void fringe_control_step(frame_run &run)
{
    auto &block = run.record.fringe_control;
    write_header(block);
    if (!run.edge_on()) {
        block.payload = defaults::fringe_control_off;
        return;
    }
    if (run.tuning.fringe_control.record != nullptr) {
        compute_fringe_control(run.gain, &run.tuning.fringe_control, run.input.sharpness, &block.payload);
    } else {
        const uint8_t unused = block.payload.unused;
        block.payload = defaults::fringe_control;
        block.payload.unused = unused;
    }
    add_fringe_control(run.mkn, block.payload);
}

void chroma_nr_step(frame_run &run)
{
    tuned_step<ISP_MAKERNOTE_CHROMA_NR>(run, run.record.chroma_nr, run.tuning.chroma_nr, defaults::chroma_nr,
                                        run.nr_on(), defaults::chroma_nr_off,
                                        [&run](const isp_chroma_nr_slot &slot, aic_chroma_nr &out) {
                                            compute_chroma_nr(run.gain, &slot, run.input.nr_strength, out.field);
                                        });
}

void edge_enhancement_step(frame_run &run)
{
    tuned_step<ISP_MAKERNOTE_EDGE_ENHANCEMENT>(
        run, run.record.edge_enhancement, run.tuning.edge_enhancement, defaults::edge_enhancement, run.edge_on(),
        defaults::edge_enhancement_off, [&run](const isp_table_slot &slot, aic_params_3 &out) {
            auto &[p0, p1, p2] = out.param;
            compute_edge_enhancement(run.gain, run.input.sharpness, &slot, &p0, &p1, &p2);
        });
}

void noise_reduction_step(frame_run &run)
{
    tuned_step<ISP_MAKERNOTE_NOISE_REDUCTION>(
        run, run.record.noise_reduction, run.tuning.noise_reduction, defaults::noise_reduction, run.bayer_nr_on(),
        defaults::noise_reduction_off, [&run](const isp_table_slot &slot, aic_noise_reduction &out) {
            auto &[p0, p1, p2, p3, p4] = out.param;
            compute_noise_reduction(run.gain, &slot, run.input.nr_strength, &p0, &p1, &p2, &p3, &p4);
        });
}

// Only a computed value fills the payload's upper half.
void xnr_step(frame_run &run)
{
    auto &block = run.record.xnr;
    write_header(block);
    if (!run.nr_on() || run.tuning.xnr.record == nullptr)
        block.payload.param = 0;
    else
        compute_xnr(run.gain, &run.tuning.xnr, &block.payload.word);
    if (run.nr_on())
        run.mkn.add<ISP_MAKERNOTE_XNR>(block.payload);
}

} // namespace qz
