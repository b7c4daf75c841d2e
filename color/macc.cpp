#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>

#include "color/effects.h"
#include "color/macc_entries.h"
#include "color/macc_tables.h"
#include "qz_isp/color.h"
#include "qz_isp/gain.h"
#include "tuning/record_view.h"
#include "util/float_to_int.h"

namespace {

using sectors = std::array<qz::sector_matrix, qz::sector_count>;
// The sixteen sectors of each effect; null: off.
using effect_tables = std::array<const qz::fixed_sector *, qz::macc_effects>;

effect_tables switched_on(uint32_t effects, std::span<const isp_macc_entry> entries)
{
    effect_tables tables = {};
    for (size_t i = 0; i < tables.size(); ++i) {
        if (!qz::has_macc_effect(effects, i))
            continue;
        const isp_macc_entry *tuned = qz::effect_entry(entries, i);
        tables[i] = tuned != nullptr ? tuned->matrix : qz::macc_effect_tables[i].sector;
    }
    return tables;
}

void multiply_by(const qz::fixed_sector *table, sectors &m)
{
    for (size_t i = 0; i < m.size(); ++i)
        m[i] = qz::to_float(table[i]) * m[i];
}

// Integer bits of the largest element.
uint32_t integer_bits(std::span<const float> elements)
{
    float largest = 0.0f;
    for (const float element : elements)
        largest = std::max(largest, std::fabs(element));
    return calc_shifter(static_cast<uint32_t>(qz::truncate_to_i32(largest)));
}

} // namespace

void compute_macc(const isp_table_slot *macc, uint32_t mode, uint32_t target, uint32_t effects, int8_t hue,
                  int16_t *coeffs, uint8_t *shift)
{
    const std::span<const isp_macc_entry> entries = qz::short_rows<isp_macc_entry>(*macc);
    const isp_macc_entry *base = qz::base_entry(entries, mode, target);

    sectors m;
    for (size_t i = 0; i < m.size(); ++i)
        m[i] = base != nullptr ? qz::to_float(base->matrix[i]) : qz::sector_matrix{1.0f, 0.0f, 0.0f, 1.0f};
    for (const qz::fixed_sector *table : switched_on(effects, entries))
        if (table != nullptr)
            multiply_by(table, m);

    float elements[4 * qz::sector_count];
    static_assert(sizeof elements == sizeof m);
    std::memcpy(elements, m.data(), sizeof elements);
    if (hue != 0)
        compute_hue(elements, hue);

    uint32_t scale = 8192; // Q13
    if (shift != nullptr) {
        const uint32_t bits = integer_bits(elements);
        *shift = static_cast<uint8_t>(bits);
        scale >>= bits;
    }
    for (const float element : elements)
        *coeffs++ = static_cast<int16_t>(qz::truncate_to_i32(element * static_cast<float>(scale)));
}
