// Steps of a frame run: blocks interpolated from a long tuning record, whose rows are 32-bit values.
#include <cstddef>
#include <cstring>
#include <iterator>
#include <span>

#include "frame/aic_layout.h"
#include "frame/curve_point.h"
#include "frame/defaults.h"
#include "frame/frame_run.h"
#include "qz_isp/gain.h"
#include "tuning/record_view.h"

namespace qz {
namespace {

// Interpolates rows at the frame's gain; none leave the values as they are.
template <typename Row, size_t values>
void interpolate(const frame_run &run, std::span<const Row> rows, uint32_t (&out)[values])
{
    static_assert(sizeof(Row) == (1 + values) * sizeof(int32_t));
    compute_generic_params(run.gain, reinterpret_cast<const int32_t *>(rows.data()), static_cast<int32_t>(values),
                           static_cast<int32_t>(rows.size()), out);
}

// A block whose whole payload is a row of a long record.
template <isp_makernote_record name, typename Row, typename Block, typename Payload>
void long_step(frame_run &run, const isp_table_slot &slot, Block &block, const Payload &untuned)
{
    write_header(block);
    if (slot.record != nullptr)
        interpolate(run, long_rows<Row>(slot), block.payload.param);
    else
        block.payload = untuned;
    run.mkn.add<name>(block.payload);
}

// White-balance gains have 16 - shift fractional bits; the block's have 9.
uint32_t to_9_fractional_bits(uint32_t gain, uint32_t shift)
{
    constexpr uint32_t same = 7;
    if (shift <= same)
        return gain >> (same - shift);
    return gain << (shift - same); // a gain's integer part has 32 bits at most
}

// The number of the value at a byte of a row, whose key is not counted.
constexpr size_t value_number(size_t byte)
{
    return byte / sizeof(int32_t) - 1;
}

} // namespace

void long_3_step(frame_run &run, const aic_white_balance &balance)
{
    auto &block = run.record.long_3;
    write_header(block);
    auto &[param, gain] = block.payload;
    if (run.tuning.long_3.record != nullptr)
        interpolate(run, long_rows<isp_long_3_row>(run.tuning.long_3), param);
    else
        std::memcpy(param, defaults::long_3, sizeof param);
    for (size_t i = 0; i < std::size(gain); ++i)
        gain[i] = to_9_fractional_bits(balance.gain[i], balance.shift);
    run.mkn.add<ISP_MAKERNOTE_LONG_3>(block.payload);
}

void long_5_step(frame_run &run)
{
    auto &block = run.record.long_5;
    write_header(block);
    const auto rows = long_rows<isp_long_5_row>(run.tuning.long_5);
    if (!rows.empty()) {
        uint32_t values[value_number(sizeof(isp_long_5_row))];
        interpolate(run, rows, values);
        const uint32_t *const curve_a = values + value_number(offsetof(isp_long_5_row, curve_a));
        const uint32_t *const curve_b = values + value_number(offsetof(isp_long_5_row, curve_b));
        const uint32_t *const param = values + value_number(offsetof(isp_long_5_row, param));
        // Whatever the gain.
        const auto scale_a = static_cast<uint32_t>(rows.front().scale_a);
        const auto scale_b = static_cast<uint32_t>(rows.front().scale_b);
        for (size_t i = 0; i < std::size(block.payload.curve_a); ++i) {
            block.payload.curve_a[i] = curve_point(curve_a[i], scale_a);
            block.payload.curve_b[i] = curve_point(curve_b[i], scale_b);
        }
        std::memcpy(block.payload.param, param, sizeof block.payload.param);
    } else {
        block.payload = defaults::long_5;
    }
    run.mkn.add<ISP_MAKERNOTE_LONG_5>(block.payload);
}

void long_6_to_12_step(frame_run &run)
{
    aic_record &record = run.record;
    const isp_tuning_set &tuning = run.tuning;

    // This one takes its defaults also for a record without rows.
    const bool has_rows = !long_rows<isp_long_6_row>(tuning.long_6).empty();
    const isp_table_slot long_6 = has_rows ? tuning.long_6 : isp_table_slot{};
    long_step<ISP_MAKERNOTE_LONG_6, isp_long_6_row>(run, long_6, record.long_6, defaults::long_6);
    long_step<ISP_MAKERNOTE_LONG_7, isp_long_7_row>(run, tuning.long_7, record.long_7, defaults::long_7);
    long_step<ISP_MAKERNOTE_LONG_13, isp_long_13_row>(run, tuning.long_13, record.long_13, defaults::long_13);
    long_step<ISP_MAKERNOTE_LONG_11, isp_long_11_row>(run, tuning.long_11, record.long_11, defaults::long_11);
    long_step<ISP_MAKERNOTE_LONG_12, isp_long_12_row>(run, tuning.long_12, record.long_12, defaults::long_12);
}

} // namespace qz
