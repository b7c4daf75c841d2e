#include "noise_detail/chroma_nr_units.h"
#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

namespace {

constexpr size_t field_count = 8;

// False when there are no rows.
template <typename Row>
bool interpolate(uint16_t gain, const isp_record *record, const void *table, uint16_t *fields)
{
    const qz::gain_rows<Row> rows(record, table);
    if (rows.empty())
        return false;

    const auto pair = rows.around(gain);
    for (size_t k = 0; k < field_count; ++k)
        fields[k] = static_cast<uint16_t>(pair.at(&Row::field, k));
    return true;
}

bool interpolate(uint16_t gain, const isp_chroma_nr_slot &slot, uint16_t *fields)
{
    if (!qz::has_8_bit_fields(slot))
        return interpolate<isp_chroma_nr_alt_row>(gain, slot.record, slot.data_alt, fields);
    if (!interpolate<isp_chroma_nr_row>(gain, slot.record, slot.data, fields))
        return false;
    fields[0] = static_cast<uint16_t>(fields[0] * qz::chroma_nr_unit);
    fields[1] = static_cast<uint16_t>(fields[1] * qz::chroma_nr_unit);
    return true;
}

} // namespace

void compute_chroma_nr(uint16_t gain, const isp_chroma_nr_slot *slot, int8_t strength, uint16_t *fields)
{
    if (!interpolate(gain, *slot, fields) || strength == 0)
        return;

    constexpr qz::strength_rule rule = qz::chroma_nr_strength;
    const float factor = qz::strength_factor(strength, rule);
    for (size_t k = 2; k < field_count; ++k)
        fields[k] = qz::scaled_16_bits(fields[k], factor, rule.limit);
}
