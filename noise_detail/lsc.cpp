#include <bit>
#include <cstddef>

#include "noise_detail/lsc_grid.h"
#include "qz_isp/bicubic.h"
#include "qz_isp/error.h"
#include "qz_isp/noise_detail.h"
#include "util/float_to_int.h"
#include "util/simd/dispatch.h"

namespace {

constexpr size_t channel_count = 4;

// What fits a field of 32 bits: a table's address, or its offset in the record where addresses are wider.
uint32_t table_address(uintptr_t address, size_t offset)
{
    if constexpr (sizeof(void *) == sizeof(uint32_t))
        return static_cast<uint32_t>(address);
    return static_cast<uint32_t>(AIC_FIXED_SIZE + AIC_LENS_SHADING_TABLES_OFFSET + offset);
}

// False, with the table as it was, where the routines refuse the sizes or memory runs out.
bool resample(const isp_lsc_params &input, size_t channel, const qz::lsc_grid &grid, uint16_t *table)
{
    const auto columns = static_cast<uint16_t>(grid.columns);
    const auto rows = static_cast<uint16_t>(grid.rows);
    const bool smaller = input.height > rows && input.width > columns;
    const uint32_t status =
        smaller ? image_downscale_32f_to_u16p10(&input.grid[channel], &table, input.width, input.height, columns, rows,
                                                1, nullptr)
                : bicubic_resize_32f_to_u16p10(input.grid[channel], input.height, input.width, table, rows, columns);
    return status == ISP_SUCCESS;
}

// From p10 to the record's format, with the channel's factor.
QZ_ALWAYS_INLINE void convert(uint16_t *table, uint32_t entries, float factor, uint32_t format)
{
    if (format == 8) {
        for (uint32_t i = 0; i < entries; ++i)
            table[i] = qz::truncate_quarter_to_low_16(static_cast<float>(table[i]) * factor);
    } else if (format == 10) {
        for (uint32_t i = 0; i < entries; ++i)
            table[i] = qz::truncate_to_low_16(static_cast<float>(table[i]) * factor);
    }
}

} // namespace

uint32_t compute_lsc(const isp_sensor_description *sensor, const isp_lsc_params *shading_input,
                     const isp_frame_desc *frame, uint8_t *enable_flag, uint32_t *out_scaled_width,
                     uint32_t *out_scaled_height, uint32_t *out_columns, uint32_t *out_rows, const uint32_t *format,
                     uint32_t *table_addresses, uintptr_t *next_free, const float *channel_factors,
                     float *out_cell_size)
{
    qz::lsc_grid grid = {};
    if (!qz::derive_lsc_grid(sensor, shading_input, frame, &grid)) {
        *enable_flag = 0;
        return ISP_INVALID_ARGUMENT;
    }

    *out_cell_size = grid.cell;
    *out_columns = grid.columns;
    *out_rows = grid.rows;
    *out_scaled_width = grid.scaled_width;
    *out_scaled_height = grid.scaled_height;

    const uintptr_t tables = *next_free;
    const size_t table_bytes = grid.entries() * sizeof(uint16_t);
    for (size_t c = 0; c < channel_count; ++c)
        table_addresses[c] = table_address(tables + c * table_bytes, c * table_bytes);
    *next_free = tables + channel_count * table_bytes;

    for (size_t c = 0; c < channel_count; ++c) {
        auto *table = std::bit_cast<uint16_t *>(tables + c * table_bytes);
        if (resample(*shading_input, c, grid, table))
            qz::run_loop<convert>(table, grid.entries(), channel_factors != nullptr ? channel_factors[c] : 1.0f,
                                  *format);
    }
    return ISP_SUCCESS;
}
