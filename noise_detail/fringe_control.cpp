#include <algorithm>
#include <cstdlib>

#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"
#include "util/float_to_int.h"

namespace {

using row = isp_fringe_control_row;
using extra_row = isp_fringe_control_extra_row;

// Fields 0 to 11 before they are brought to 13 bits.
using wide_fields = int32_t[12];

template <typename Row, typename T, size_t count>
int32_t *interpolate(const qz::row_pair<Row> &pair, T (Row::*columns)[count], int32_t *out)
{
    for (size_t k = 0; k < count; ++k)
        *out++ = static_cast<int32_t>(pair.at(columns, k));
    return out;
}

// A value has at most 18 bits and its sign, even one whose interpolation wrapped, so the products fit.
int32_t moved(int32_t value, int8_t sharpness)
{
    const int32_t end = qz::fringe_control_end(sharpness);
    if (sharpness > 0) {
        const auto way = static_cast<float>(sharpness * (end - value));
        const float result = way / 127.0f + static_cast<float>(value);
        return result < static_cast<float>(end) ? qz::truncate_to_i32(result) : end;
    }
    if (sharpness < 0) {
        const auto way = static_cast<float>(-sharpness * (end - value));
        const float result = way * 0.0078125f + static_cast<float>(value);
        return result > static_cast<float>(end) ? qz::truncate_to_i32(result) : end;
    }
    return value;
}

// The right shift that brings every field to a magnitude of 13 bits.
uint32_t common_shift(const wide_fields &fields)
{
    int32_t largest = 0;
    for (const int32_t field : fields)
        largest = std::max(largest, std::abs(field));
    return calc_shifter(static_cast<uint32_t>(largest) >> 13);
}

template <typename T, size_t count>
const int32_t *store(const int32_t *fields, uint32_t shift, T (&out)[count])
{
    for (T &field : out)
        field = static_cast<T>(*fields++ >> shift);
    return fields;
}

} // namespace

void compute_fringe_control(uint16_t gain, const isp_fringe_control_slot *slot, int8_t sharpness,
                            aic_fringe_control *block)
{
    const qz::gain_rows<row> rows(slot->record, slot->data);
    if (rows.empty())
        return;

    wide_fields fields = {};
    const auto *extra = static_cast<const extra_row *>(slot->extra);
    const auto pair = rows.around(gain);
    if (extra != nullptr)
        interpolate(pair.in(extra), &extra_row::field_0_to_3, fields);
    int32_t *const fields_10_to_11 = interpolate(pair, &row::field_4_to_9, fields + 4);
    interpolate(pair, &row::field_10_to_11, fields_10_to_11);
    for (size_t k = 4; k < 8; ++k)
        fields[k] = moved(fields[k], sharpness);

    const uint32_t shift = common_shift(fields);
    block->exponent = static_cast<uint8_t>(shift + slot->count2);
    if (extra != nullptr)
        store(fields, shift, block->field_0_to_3);
    const int32_t *next = store(fields + 4, shift, block->field_4_to_7);
    next = store(next, shift, block->field_8_to_9);
    store(next, shift, block->field_10_to_11);
    for (int16_t &field : block->field_10_to_11)
        field = std::min(field, int16_t{0});
}
