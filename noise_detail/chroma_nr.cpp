#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

namespace {

constexpr size_t field_count = 8;

template <typename T>
struct row {
    uint16_t key;
    T field[field_count];
};

static_assert(sizeof(row<uint8_t>) == 10);
static_assert(sizeof(row<uint16_t>) == 18);

// A positive strength makes the fields smaller.
constexpr qz::strength_span fivefold_to_fifth = {-0.8, 4.0};

// False when there are no rows.
template <typename T>
bool interpolate(uint16_t gain, const isp_record *record, const void *table, uint16_t *fields)
{
    const qz::gain_rows<row<T>> rows(record, table);
    if (rows.empty())
        return false;

    const auto pair = rows.around(gain);
    for (size_t k = 0; k < field_count; ++k)
        fields[k] = static_cast<uint16_t>(pair.at(&row<T>::field, k));
    return true;
}

bool interpolate(uint16_t gain, const isp_chroma_nr_slot &slot, uint16_t *fields)
{
    if (slot.data == nullptr)
        return interpolate<uint16_t>(gain, slot.record, slot.data_alt, fields);
    if (!interpolate<uint8_t>(gain, slot.record, slot.data, fields))
        return false;
    // In 8 bits these two are tuned in units of 32.
    fields[0] = static_cast<uint16_t>(fields[0] << 5);
    fields[1] = static_cast<uint16_t>(fields[1] << 5);
    return true;
}

} // namespace

void compute_chroma_nr(uint16_t gain, const isp_chroma_nr_slot *slot, int8_t strength, uint16_t *fields)
{
    if (!interpolate(gain, *slot, fields) || strength == 0)
        return;

    const float factor = qz::strength_factor(strength, fivefold_to_fifth);
    for (size_t k = 2; k < field_count; ++k)
        fields[k] = qz::scaled_to_13_bits(fields[k], factor);
}
