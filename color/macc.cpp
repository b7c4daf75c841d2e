#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <span>

#include "color/macc_tables.h"
#include "qz_isp/color.h"
#include "qz_isp/gain.h"
#include "util/float_to_int.h"

namespace {

using sectors = std::array<qz::sector_matrix, qz::sector_count>;
using effect_tables = std::array<const qz::fixed_sectors *, qz::macc_effect_tables.size()>; // null: off

// As it lies in the tuning record, aligned to 2 bytes.
struct macc_entry {
    uint16_t type; // 0: a base set; 1 to 4: replaces the fixed table of that effect
    uint16_t key;
    qz::fixed_sectors set;
};
static_assert(sizeof(macc_entry) == 132);

std::span<const macc_entry> entries_of(const isp_table_slot &slot)
{
    if (slot.record == nullptr)
        return {};
    uint16_t count = 0;
    std::memcpy(&count, slot.record + 1, sizeof count);
    return {static_cast<const macc_entry *>(slot.data), count};
}

// Null when there is no base set to choose.
const qz::fixed_sectors *nearest_base(std::span<const macc_entry> entries, uint32_t target)
{
    const macc_entry *nearest = nullptr;
    uint32_t least = 0;
    for (const macc_entry &entry : entries) {
        const uint32_t distance = entry.key > target ? entry.key - target : target - entry.key;
        if (entry.type == 0 && (nearest == nullptr || distance < least)) {
            nearest = &entry;
            least = distance;
        }
    }
    return nearest != nullptr ? &nearest->set : nullptr;
}

const qz::fixed_sectors *first_base_of_key_0(std::span<const macc_entry> entries)
{
    const auto found = std::ranges::find_if(entries, [](const macc_entry &e) { return e.type == 0 && e.key == 0; });
    return found != entries.end() ? &found->set : nullptr;
}

effect_tables switched_on(uint32_t effects, std::span<const macc_entry> entries)
{
    effect_tables tables = {};
    for (size_t i = 0; i < tables.size(); ++i)
        tables[i] = ((effects >> i) & 1) != 0 ? &qz::macc_effect_tables[i] : nullptr;
    for (const macc_entry &entry : entries)
        if (entry.type >= 1 && entry.type <= 4 && tables[entry.type - 1u] != nullptr)
            tables[entry.type - 1u] = &entry.set;
    return tables;
}

void multiply_by(const qz::fixed_sectors &table, sectors &m)
{
    for (size_t i = 0; i < m.size(); ++i)
        m[i] = to_float(table.sector[i]) * m[i];
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
    const std::span<const macc_entry> entries = entries_of(*macc);
    const qz::fixed_sectors *base = mode == 1 ? nearest_base(entries, target) : first_base_of_key_0(entries);

    sectors m;
    for (size_t i = 0; i < m.size(); ++i)
        m[i] = base != nullptr ? to_float(base->sector[i]) : qz::sector_matrix{1.0f, 0.0f, 0.0f, 1.0f};
    for (const qz::fixed_sectors *table : switched_on(effects, entries))
        if (table != nullptr)
            multiply_by(*table, m);

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
