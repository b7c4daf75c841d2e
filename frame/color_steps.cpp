// Steps of a frame run: colour blocks.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "frame/aic_layout.h"
#include "frame/defaults.h"
#include "frame/frame_run.h"
#include "qz_isp/color.h"

namespace qz {

const aic_white_balance &white_balance_step(frame_run &run)
{
    auto &block = run.record.white_balance;
    write_header(block);
    if (run.input.scene != nullptr && run.input.colour != nullptr) {
        auto &[shift, gain] = block.payload;
        compute_white_balance(run.input.colour->white_balance_gain, &shift, &gain[1], &gain[0], &gain[3], &gain[2]);
    } else {
        block.payload = defaults::white_balance;
    }
    run.mkn.add<ISP_MAKERNOTE_WHITE_BALANCE>(block.payload);
    return block.payload;
}

void yuv_to_rgb_step(frame_run &run)
{
    auto &block = run.record.yuv_to_rgb;
    write_header(block);
    float matrix[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    if (run.input.colour != nullptr) {
        std::copy(std::begin(run.input.colour->ccm), std::end(run.input.colour->ccm), matrix);
        apply_color_effects_to_ccms(matrix, 1, run.input.effects);
    }
    set_yuv_to_rgb(matrix, block.payload.coeff, &block.payload.frac_bits);
    run.mkn.add<ISP_MAKERNOTE_YUV_TO_RGB>(block.payload);
}

void ctc_step(frame_run &run)
{
    auto &block = run.record.ctc;
    write_header(block);
    if (run.tuning.ctc_config != nullptr)
        compute_ctc_config(run.tuning.ctc_config, run.saturation, reinterpret_cast<uint16_t *>(&block.payload));
    else
        block.payload = defaults::ctc;
    run.mkn.add<ISP_MAKERNOTE_CTC>(block.payload);
}

void macc_step(frame_run &run)
{
    auto &sectors = run.record.macc;
    auto &shift = run.record.macc_shift;
    write_header(sectors);
    write_header(shift);
    if (run.tuning.macc.record != nullptr) {
        const uint32_t target = run.input.scene != nullptr ? run.input.scene->macc_target : 0;
        shift.payload.value = 0;
        compute_macc(&run.tuning.macc, run.input.tuning_mode, target, run.input.effects, run.input.hue,
                     &sectors.payload.coeff[0][0], &shift.payload.value);
    } else {
        for (auto &sector : sectors.payload.coeff)
            std::copy(std::begin(defaults::macc_sector), std::end(defaults::macc_sector), sector);
        shift.payload.value = defaults::macc_shift;
    }
    run.mkn.add<ISP_MAKERNOTE_MACC>(sectors.payload);
    run.mkn.add<ISP_MAKERNOTE_MACC_SHIFT>(shift.payload);
}

void black_level_step(frame_run &run)
{
    auto &block = run.record.black_level;
    write_header(block);
    auto &level = block.payload.level;
    if (run.has_black_levels())
        compute_isp_black_level_compensation(run.input.colour->black_level, run.sensor->bit_depth, &level[1], &level[0],
                                             &level[3], &level[2]);
    else
        block.payload = {};
    // Consumers of this record expect the next block's id behind the levels, as it is before that block is written.
    const uint32_t words[] = {level[0], level[1], level[2], level[3], run.record.xnr.id};
    run.mkn.add<ISP_MAKERNOTE_BLACK_LEVEL>(words);
}

namespace {

void brightness_contrast(const frame_run &run, uint16_t *const (&tables)[3], uint32_t entries)
{
    const int8_t brightness = run.input.brightness;
    const int8_t contrast = run.input.contrast;
    if (brightness == 0 && contrast == 0)
        return;
    const size_t bytes = entries * sizeof(uint16_t);
    // Channels mostly have one curve, and equal tables become equal ones: what the first became is copied then, as
    // the powers are the dearest part of a frame.
    bool same_as_first[3] = {};
    for (size_t c = 1; c < 3; ++c)
        same_as_first[c] = std::memcmp(tables[c], tables[0], bytes) == 0;
    for (size_t c = 0; c < 3; ++c) {
        if (same_as_first[c])
            std::memcpy(tables[c], tables[0], bytes);
        else
            compute_brightness_contrast(brightness, contrast, tables[c], tables[c], static_cast<int32_t>(entries));
    }
}

} // namespace

void gamma_step(frame_run &run)
{
    auto &record = run.record;
    write_header(record.gamma_0);
    write_header(record.gamma_1);
    write_header(record.gamma_2);
    aic_gamma *const gammas[3] = {&record.gamma_0.payload, &record.gamma_1.payload, &record.gamma_2.payload};
    uint16_t *const tables[3] = {gammas[0]->table, gammas[1]->table, gammas[2]->table};

    const isp_input_params &input = run.input;
    const bool long_tables = input.gamma_257 != 0;
    const uint32_t entries = long_tables ? AIC_GAMMA_MAX_ENTRIES : AIC_GAMMA_MAX_ENTRIES - 1;
    const float threshold = input.colour != nullptr ? input.colour->gamma_parameter : 1.0f;
    for (size_t c = 0; c < 3; ++c) {
        gammas[c]->has_257_entries = long_tables ? 1 : 0;
        const float *curve = input.gamma != nullptr ? input.gamma->curve[c] : nullptr;
        compute_gamma(input.gamma, curve, input.effects, tables[c], entries, threshold, run.mkn.handle());
    }
    brightness_contrast(run, tables, entries);
    run.mkn.add<ISP_MAKERNOTE_GAMMA_TABLE>(tables[0], entries);
}

} // namespace qz
