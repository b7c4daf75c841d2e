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

// Groups that begin at a slot; one at the end of the set.
consteval int groups_at(size_t slot)
{
    int groups = slot == slot_count || slot == QZ_SLOT_GROUP(unused).first ? 1 : 0;
    for (const slot_group group : slot_groups)
        groups += group.first == slot ? 1 : 0;
    return groups;
}

consteval size_t slot_behind(slot_group group)
{
    return size_t{group.first} + group.slots;
}

#define QZ_CHECK_SLOT(field)                                                                                           \
    static_assert(groups_at(QZ_SLOT_GROUP(field).first) == 1, "slot " #field " is in ISP_TUNING_SLOTS once");          \
    static_assert(groups_at(slot_behind(QZ_SLOT_GROUP(field))) != 0, "the slot behind " #field " is listed too");
ISP_TUNING_SLOTS(QZ_CHECK_SLOT)
#undef QZ_CHECK_SLOT
static_assert(slot_groups[0].first == 0 && groups_at(slot_behind(QZ_SLOT_GROUP(unused))) != 0,
              "the slots at the beginning and behind unused are listed too");

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
