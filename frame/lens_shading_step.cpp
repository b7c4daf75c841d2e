// Step of a frame run: the lens shading block, whose tables follow the record's fixed part.
#include <cstddef>
#include <type_traits>

#include "frame/aic_layout.h"
#include "frame/frame_run.h"
#include "noise_detail/lsc_grid.h"
#include "qz_isp/color.h"
#include "qz_isp/noise_detail.h"

namespace qz {
namespace {

constexpr uint32_t channels = std::extent_v<decltype(aic_lens_shading::table)>;

// False when the frame's grid is known not to fit the record; other bad inputs are compute_lsc()'s to refuse.
bool tables_fit(const frame_run &run)
{
    lsc_grid grid = {};
    return !derive_lsc_grid(run.sensor, run.input.lsc, run.input.frame, &grid) ||
           grid.entries() <= AIC_LENS_SHADING_MAX_ENTRIES;
}

uint8_t compute_tables(const frame_run &run, aic_lens_shading &block)
{
    uint8_t enable = 1;
    float factors[channels] = {1.0f, 1.0f, 1.0f, 1.0f};
    if (run.has_black_levels())
        compute_isp_lsc_saturation_compensation(run.input.colour->black_level, run.sensor->bit_depth, factors);
    auto next_free = reinterpret_cast<uintptr_t>(block.entries);
    float cell_size = 0;
    compute_lsc(run.sensor, run.input.lsc, run.input.frame, &enable, &block.scaled_width, &block.scaled_height,
                &block.columns, &block.rows, &block.format, block.table, &next_free, factors, &cell_size);
    return enable;
}

void add_records(const frame_run &run, const aic_lens_shading &block)
{
    run.mkn.add<ISP_MAKERNOTE_LENS_SHADING>(block);
    if (block.table[0] == 0) // never computed
        return;
    if (run.input.tuning_mode <= 1)
        run.mkn.add<ISP_MAKERNOTE_LENS_SHADING_TABLES>(block.entries, block.columns * block.rows * channels);
    run.mkn.add<ISP_MAKERNOTE_LENS_SHADING_ROWS>(block.entries, block.columns * 2);
}

} // namespace

uint32_t lens_shading_step(frame_run &run)
{
    constexpr uint32_t fractional_bits = 8;
    auto &block = run.record.lens_shading;
    write_header(block);
    block.payload.format = fractional_bits;
    block.payload.enable = tables_fit(run) ? compute_tables(run, block.payload) : 0;
    add_records(run, block.payload);
    // The header and the tables; the words between them do not count.
    constexpr uint32_t header_size = offsetof(aic_lens_shading_block, payload);
    constexpr uint32_t entry_size = channels * sizeof(uint16_t);
    block.size = header_size + block.payload.rows * block.payload.columns * entry_size;
    return block.size;
}

} // namespace qz
