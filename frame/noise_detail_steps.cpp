// Steps of a frame run: gain-indexed noise and detail blocks.
#include <algorithm>
#include <iterator>

#include "frame/aic_layout.h"
#include "frame/defaults.h"
#include "frame/frame_run.h"
#include "qz_isp/noise_detail.h"

namespace qz {

void defect_pixel_step(const frame_run &run)
{
    auto &block = run.record.defect_pixel;
    write_header(block);
    auto &[param, gain] = block.payload;
    if (run.tuning.defect_pixel_correction.record != nullptr)
        compute_defect_pixel_correction(run.gain, &run.tuning.defect_pixel_correction, &param[0], &param[1]);
    else
        std::copy(std::begin(defaults::defect_pixel), std::end(defaults::defect_pixel), param);
    std::copy(std::begin(run.record.white_balance.payload.gain), std::end(run.record.white_balance.payload.gain), gain);
    run.mkn.add(QZ_MKN_U32, 517, &block.payload, 6);
}

void temporal_noise_reduction_step(const frame_run &run)
{
    auto &block = run.record.temporal_noise_reduction;
    write_header(block);
    if (!run.nr_on()) {
        block.payload = defaults::temporal_noise_reduction_off;
        return;
    }
    auto &param = block.payload.param;
    if (run.tuning.temporal_noise_reduction.record != nullptr)
        compute_temporal_noise_reduction(run.gain, &run.tuning.temporal_noise_reduction, run.input.nr_strength,
                                         &param[0], &param[1], &param[2]);
    else
        block.payload = defaults::temporal_noise_reduction;
    run.mkn.add(QZ_MKN_U32, 520, &block.payload, 3);
}

void y_edge_enhancement_step(const frame_run &run)
{
    auto &block = run.record.y_edge_enhancement;
    write_header(block);
    if (!run.nr_on()) {
        block.payload = defaults::y_edge_enhancement_off;
        return;
    }
    auto &param = block.payload.param;
    if (run.tuning.y_edge_enhancement.record != nullptr)
        compute_y_edge_enhancement(run.gain, &run.tuning.y_edge_enhancement, run.input.sharpness, &param[0], &param[1],
                                   &param[2], &param[3]);
    else
        block.payload = defaults::y_edge_enhancement;
    run.mkn.add(QZ_MKN_U16, 541, &block.payload, 4);
}

namespace {

void add_fringe_control(const makernote &mkn, const aic_fringe_control &block)
{
    int32_t words[13] = {block.exponent};
    int32_t *next = words + 1;
    next = std::copy(std::begin(block.field_4_to_7), std::end(block.field_4_to_7), next);
    next = std::copy(std::begin(block.field_8_to_9), std::end(block.field_8_to_9), next);
    next = std::copy(std::begin(block.field_10_to_11), std::end(block.field_10_to_11), next);
    std::copy(std::begin(block.field_0_to_3), std::end(block.field_0_to_3), next);
    mkn.add(QZ_MKN_I32, 531, words, 13);
}

} // namespace

void fringe_control_step(const frame_run &run)
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
    if (run.mkn.present())
        add_fringe_control(run.mkn, block.payload);
}

void chroma_nr_step(const frame_run &run)
{
    auto &block = run.record.chroma_nr;
    write_header(block);
    if (!run.nr_on()) {
        block.payload = defaults::chroma_nr_off;
        return;
    }
    if (run.tuning.chroma_nr.record != nullptr)
        compute_chroma_nr(run.gain, &run.tuning.chroma_nr, run.input.nr_strength, block.payload.field);
    else
        block.payload = defaults::chroma_nr;
    run.mkn.add(QZ_MKN_U16, 532, &block.payload, 8);
}

void edge_enhancement_step(const frame_run &run)
{
    auto &block = run.record.edge_enhancement;
    write_header(block);
    if (!run.edge_on()) {
        block.payload = defaults::edge_enhancement_off;
        return;
    }
    auto &param = block.payload.param;
    if (run.tuning.edge_enhancement.record != nullptr)
        compute_edge_enhancement(run.gain, run.input.sharpness, &run.tuning.edge_enhancement, &param[0], &param[1],
                                 &param[2]);
    else
        block.payload = defaults::edge_enhancement;
    run.mkn.add(QZ_MKN_U32, 519, &block.payload, 3);
}

void noise_reduction_step(const frame_run &run)
{
    auto &block = run.record.noise_reduction;
    write_header(block);
    if (!run.bayer_nr_on()) {
        block.payload = defaults::noise_reduction_off;
        return;
    }
    auto &param = block.payload.param;
    if (run.tuning.noise_reduction.record != nullptr)
        compute_noise_reduction(run.gain, &run.tuning.noise_reduction, run.input.nr_strength, &param[0], &param[1],
                                &param[2], &param[3], &param[4]);
    else
        block.payload = defaults::noise_reduction;
    run.mkn.add(QZ_MKN_U32, 518, &block.payload, 5);
}

void xnr_step(const frame_run &run)
{
    auto &block = run.record.xnr;
    write_header(block);
    if (!run.nr_on() || run.tuning.xnr.record == nullptr)
        block.payload.param = 0;
    else
        compute_xnr(run.gain, &run.tuning.xnr, &block.payload.word);
    if (run.nr_on())
        run.mkn.add(QZ_MKN_U16, 521, &block.payload, 1);
}

} // namespace qz
