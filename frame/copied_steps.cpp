// Steps of a frame run: values copied from an input or a tuning record.
#include <bit>

#include "frame/aic_layout.h"
#include "frame/defaults.h"
#include "frame/frame_run.h"
#include "tuning/record_view.h"

namespace qz {

void rec_3_step(frame_run &run)
{
    auto &block = run.record.rec_3;
    write_header(block);
    const isp_record *record = run.tuning.rec_3;
    block.payload = record != nullptr ? std::bit_cast<aic_rec_3>(values_of<isp_rec_3_values>(record)) : defaults::rec_3;
    run.mkn.add<ISP_MAKERNOTE_REC_3>(block.payload);
}

void block_9_step(frame_run &run)
{
    auto &block = run.record.block_9;
    write_header(block);
    block.payload.value = run.input.block9_control ^ 1u;
    run.mkn.add<ISP_MAKERNOTE_BLOCK_9>(block.payload);
}

void rec_13_step(frame_run &run)
{
    auto &a = run.record.rec_13_a;
    auto &b = run.record.rec_13_b;
    write_header(a);
    write_header(b);
    const isp_record *record = run.tuning.rec_13;
    const auto tuned = record != nullptr ? values_of<isp_rec_13_values>(record) : isp_rec_13_values{};
    b.payload.value = tuned.value[0];
    a.payload.value = tuned.value[1];
    run.mkn.add<ISP_MAKERNOTE_REC_13>(tuned.value);
}

void rec_16_step(frame_run &run)
{
    auto &block = run.record.rec_16;
    write_header(block);
    block.payload = defaults::rec_16;
    if (run.tuning.rec_16 != nullptr) {
        const auto tuned = values_of<isp_rec_16_values>(run.tuning.rec_16);
        auto &value = block.payload.value;
        value[4] = tuned.value[0];
        value[3] = value[5] = tuned.value[1];
    }
    run.mkn.add<ISP_MAKERNOTE_REC_16>(block.payload);
}

void frame_counter_step(frame_run &run, uint32_t &counter)
{
    auto &block = run.record.frame_counter;
    write_header(block);
    block.payload.value = counter++;
}

} // namespace qz
