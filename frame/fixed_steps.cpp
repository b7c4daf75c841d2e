// Steps of a frame run: blocks that are copied, fixed, or interpolated from a long tuning record.
#include <cstring>
#include <iterator>

#include "frame/aic_layout.h"
#include "frame/defaults.h"
#include "frame/frame_run.h"
#include "qz_isp/gain.h"

namespace qz {
namespace {

template <typename T>
T read_at(const isp_record *record, size_t offset)
{
    T value;
    std::memcpy(&value, reinterpret_cast<const uint8_t *>(record) + offset, sizeof value);
    return value;
}

int32_t row_count(const isp_table_slot &slot)
{
    return read_at<int32_t>(slot.record, 16);
}

const int32_t *rows(const isp_table_slot &slot)
{
    return static_cast<const int32_t *>(slot.data);
}

// Interpolates a long record at the frame's gain; one without rows leaves the values as they are.
void interpolate(const frame_run &run, const isp_table_slot &slot, int32_t values, uint32_t *out)
{
    compute_generic_params(run.gain, rows(slot), values, row_count(slot), out);
}

// A block whose whole payload is a row of a long record.
template <typename Block, typename Payload>
void long_block(const frame_run &run, const isp_table_slot &slot, Block &block, const Payload &fallback)
{
    write_header(block);
    if (slot.record != nullptr)
        interpolate(run, slot, static_cast<int32_t>(std::size(block.payload.param)), block.payload.param);
    else
        block.payload = fallback;
}

// White-balance gains have 16 - shift fractional bits; the block's have 9.
uint32_t to_9_fractional_bits(uint32_t gain, uint32_t shift)
{
    constexpr uint32_t same = 7;
    if (shift <= same)
        return gain >> (same - shift);
    return gain << (shift - same); // a gain's integer part has 32 bits at most
}

// Curve points scaled by a Q9 factor, limited to 13 bits.
uint32_t curve_point(uint32_t value, uint32_t scale)
{
    const auto product = static_cast<int32_t>(value * scale);
    if (product < 0)
        return 0;
    return product > 4193791 ? 8191 : static_cast<uint32_t>(product / 512);
}

} // namespace

void long_3_step(const frame_run &run)
{
    auto &block = run.record.long_3;
    write_header(block);
    auto &[param, gain] = block.payload;
    if (run.tuning.long_3.record != nullptr)
        interpolate(run, run.tuning.long_3, 3, param);
    else
        std::memcpy(param, defaults::long_3, sizeof param);
    const aic_white_balance &balance = run.record.white_balance.payload;
    for (size_t i = 0; i < 4; ++i)
        gain[i] = to_9_fractional_bits(balance.gain[i], balance.shift);
    run.mkn.add(QZ_MKN_U32, 546, &block.payload, 7);
}

void rec_3_step(const frame_run &run)
{
    auto &block = run.record.rec_3;
    write_header(block);
    const isp_record *record = run.tuning.rec_3;
    if (record != nullptr)
        block.payload = read_at<aic_rec_3>(record, 8);
    else
        block.payload = defaults::rec_3;
    run.mkn.add(QZ_MKN_U16, 530, &block.payload, 3);
}

void block_9_step(const frame_run &run)
{
    auto &block = run.record.block_9;
    write_header(block);
    block.payload.value = run.input.block9_control ^ 1u;
    run.mkn.add(QZ_MKN_U16, 545, &block.payload, 1);
}

void rec_13_step(const frame_run &run)
{
    auto &a = run.record.rec_13_a;
    auto &b = run.record.rec_13_b;
    write_header(a);
    write_header(b);
    const isp_record *record = run.tuning.rec_13;
    a.payload.value = record != nullptr ? read_at<uint16_t>(record, 10) : 0;
    b.payload.value = record != nullptr ? read_at<uint16_t>(record, 8) : 0;
    const uint16_t values[2] = {b.payload.value, a.payload.value};
    run.mkn.add(QZ_MKN_U16, 535, values, 2);
}

void fixed_blocks_step(const frame_run &run)
{
    aic_record &record = run.record;
    write_header(record.rgb_to_yuv);
    record.rgb_to_yuv.payload = defaults::rgb_to_yuv;

    write_header(record.rec_16);
    record.rec_16.payload = defaults::rec_16;
    if (run.tuning.rec_16 != nullptr) {
        auto &value = record.rec_16.payload.value;
        value[4] = read_at<uint16_t>(run.tuning.rec_16, 8);
        value[3] = value[5] = read_at<uint16_t>(run.tuning.rec_16, 10);
    }
    run.mkn.add(QZ_MKN_U32, 523, &record.rec_16.payload, 6);

    write_header(record.block_21);
    record.block_21.payload = defaults::block_21;
    write_header(record.block_22);
    record.block_22.payload = defaults::block_22;
    run.mkn.add(QZ_MKN_U8, 516, &record.block_22.payload, 2);
    write_header(record.block_23);
    record.block_23.payload = defaults::block_23;
}

void long_5_step(const frame_run &run)
{
    auto &block = run.record.long_5;
    write_header(block);
    const isp_table_slot &slot = run.tuning.long_5;
    if (slot.record != nullptr && row_count(slot) > 0) {
        // A row holds two curves of 64 points, the scale of each, and the parameters. The scales are those of the
        // table's first row, whatever the gain.
        uint32_t values[147];
        interpolate(run, slot, 147, values);
        const auto scale_a = static_cast<uint32_t>(rows(slot)[1 + 128]);
        const auto scale_b = static_cast<uint32_t>(rows(slot)[1 + 129]);
        for (size_t i = 0; i < 64; ++i) {
            block.payload.curve_a[i] = curve_point(values[i], scale_a);
            block.payload.curve_b[i] = curve_point(values[64 + i], scale_b);
        }
        std::memcpy(block.payload.param, values + 130, sizeof block.payload.param);
    } else {
        block.payload = defaults::long_5;
    }
    run.mkn.add(QZ_MKN_U16, 547, &block.payload, 145);
}

void long_blocks_step(const frame_run &run)
{
    aic_record &record = run.record;
    const isp_tuning_set &tuning = run.tuning;

    // This one takes its defaults also for a record without rows.
    const bool has_rows = tuning.long_6.record != nullptr && row_count(tuning.long_6) > 0;
    long_block(run, has_rows ? tuning.long_6 : isp_table_slot{}, record.long_6, defaults::long_6);
    run.mkn.add(QZ_MKN_U16, 549, &record.long_6.payload, 295);
    long_block(run, tuning.long_7, record.long_7, defaults::long_7);
    run.mkn.add(QZ_MKN_U16, 550, &record.long_7.payload, 62);
    long_block(run, tuning.long_13, record.long_13, defaults::long_13);
    run.mkn.add(QZ_MKN_U16, 551, &record.long_13.payload, 6);
    long_block(run, tuning.long_11, record.long_11, defaults::long_11);
    run.mkn.add(QZ_MKN_U16, 553, &record.long_11.payload, 14);
    long_block(run, tuning.long_12, record.long_12, defaults::long_12);
    run.mkn.add(QZ_MKN_U16, 554, &record.long_12.payload, 97);
}

void frame_counter_step(const frame_run &run, uint32_t &counter)
{
    auto &block = run.record.frame_counter;
    write_header(block);
    block.payload.value = counter++;
}

} // namespace qz
