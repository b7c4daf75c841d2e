// Steps of a frame run: blocks that are the same in every frame.
#include "frame/aic_layout.h"
#include "frame/defaults.h"
#include "frame/frame_run.h"

namespace qz {

void rgb_to_yuv_step(frame_run &run)
{
    auto &block = run.record.rgb_to_yuv;
    write_header(block);
    block.payload = defaults::rgb_to_yuv;
}

void blocks_21_to_23_step(frame_run &run)
{
    aic_record &record = run.record;
    write_header(record.block_21);
    record.block_21.payload = defaults::block_21;
    write_header(record.block_22);
    record.block_22.payload = defaults::block_22;
    run.mkn.add<ISP_MAKERNOTE_BLOCK_22>(record.block_22.payload);
    write_header(record.block_23);
    record.block_23.payload = defaults::block_23;
}

} // namespace qz
