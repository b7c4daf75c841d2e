// Which slots blocks read.
#pragma once

#include <cstdint>
#include <string_view>

#include "desk/explain/block_sources.h"

namespace qz::desk {

// Slots, a bit for each.
using slot_set = uint32_t;
static_assert(static_cast<unsigned>(tuning_slot::none) < 32);

constexpr slot_set bit_of(tuning_slot slot)
{
    return slot == tuning_slot::none ? 0 : slot_set{1} << static_cast<unsigned>(slot);
}

inline slot_set read_slots()
{
    slot_set all = 0;
    for (const block_source &source : block_sources())
        all |= bit_of(source.slot);
    return all;
}

// Of a name that is one.
tuning_slot slot_of(std::string_view name);

} // namespace qz::desk
