// A tuning set as a row of pointer-wide slots, for what treats all groups alike: replacing, merging and freeing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qz_isp/tuning.h"
#include "qz_isp/tuning_layout.h"

namespace qz {

inline constexpr size_t slot_count = sizeof(isp_tuning_set) / sizeof(void *);

// Consecutive slots that are filled together, the record's first.
struct slot_group {
    uint8_t first;
    uint8_t slots;
};

#define QZ_SLOT_GROUP(field)                                                                                           \
    slot_group                                                                                                         \
    {                                                                                                                  \
        offsetof(isp_tuning_set, field) / sizeof(void *), sizeof(isp_tuning_set::field) / sizeof(void *)               \
    }

// Every group that holds a record.
#define QZ_LISTED_GROUP(field) QZ_SLOT_GROUP(field),
inline constexpr slot_group slot_groups[] = {ISP_TUNING_SLOTS(QZ_LISTED_GROUP)};
#undef QZ_LISTED_GROUP

consteval bool every_slot_is_in_one_group()
{
    int groups[slot_count] = {};
    const auto count = [&](slot_group group) {
        for (size_t k = 0; k < group.slots; ++k)
            ++groups[group.first + k];
    };
    for (const slot_group group : slot_groups)
        count(group);
    count(QZ_SLOT_GROUP(unused));
    for (const int n : groups)
        if (n != 1)
            return false;
    return true;
}
static_assert(every_slot_is_in_one_group(), "ISP_TUNING_SLOTS lists every slot of isp_tuning_set, each once");

inline void *slot_address(isp_tuning_set &set, size_t slot)
{
    return reinterpret_cast<unsigned char *>(&set) + slot * sizeof(void *);
}

inline const void *slot_address(const isp_tuning_set &set, size_t slot)
{
    return reinterpret_cast<const unsigned char *>(&set) + slot * sizeof(void *);
}

// The record that the slot holds, or null.
inline isp_record *record_in(const isp_tuning_set &set, size_t slot)
{
    isp_record *record = nullptr;
    std::memcpy(&record, slot_address(set, slot), sizeof record);
    return record;
}

inline void set_slot(isp_tuning_set &set, size_t slot, const void *address)
{
    std::memcpy(slot_address(set, slot), &address, sizeof address);
}

} // namespace qz
