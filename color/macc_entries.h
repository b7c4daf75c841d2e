// The entries of a multi-axis tuning record, and which of them a frame takes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "qz_isp/tuning_layout.h"

namespace qz {

// The base set that the sectors start from: in mode 1 the one whose key is nearest to the target, of equally near ones
// the first; in other modes the first of key 0. Null when there is none: the identity.
constexpr const isp_macc_entry *base_entry(std::span<const isp_macc_entry> entries, uint32_t mode, uint32_t target)
{
    const isp_macc_entry *base = nullptr;
    uint32_t least = 0;
    for (const isp_macc_entry &entry : entries) {
        if (entry.type != 0 || (mode != 1 && entry.key != 0))
            continue;
        const uint32_t distance = entry.key > target ? entry.key - target : target - entry.key;
        if (base == nullptr || (mode == 1 && distance < least)) {
            base = &entry;
            least = distance;
        }
    }
    return base;
}

// What replaces the fixed table of an effect, see macc_effects: the last entry of its type. Null when
// nothing does, as always for the fifth.
constexpr const isp_macc_entry *effect_entry(std::span<const isp_macc_entry> entries, size_t effect)
{
    const isp_macc_entry *last = nullptr;
    if (effect < 4)
        for (const isp_macc_entry &entry : entries)
            if (entry.type == effect + 1)
                last = &entry;
    return last;
}

} // namespace qz
