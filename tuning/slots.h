// A tuning set as a row of pointer-wide slots, for what treats all groups alike: replacing, merging and freeing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "qz_isp/tuning.h"

namespace qz {

inline constexpr size_t slot_count = 50;
static_assert(sizeof(isp_tuning_set) == slot_count * sizeof(void *));

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

// Every group that holds a record; rec_1 comes first because a selected set leaves it out.
inline constexpr slot_group slot_groups[] = {
    QZ_SLOT_GROUP(rec_1),
    QZ_SLOT_GROUP(rec_2),
    QZ_SLOT_GROUP(rec_3),
    QZ_SLOT_GROUP(macc),
    QZ_SLOT_GROUP(defect_pixel_correction),
    QZ_SLOT_GROUP(noise_reduction),
    QZ_SLOT_GROUP(edge_enhancement),
    QZ_SLOT_GROUP(y_edge_enhancement),
    QZ_SLOT_GROUP(fringe_control),
    QZ_SLOT_GROUP(chroma_nr),
    QZ_SLOT_GROUP(ctc_config),
    QZ_SLOT_GROUP(rec_13),
    QZ_SLOT_GROUP(temporal_noise_reduction),
    QZ_SLOT_GROUP(xnr),
    QZ_SLOT_GROUP(rec_16),
    QZ_SLOT_GROUP(long_3),
    QZ_SLOT_GROUP(long_5),
    QZ_SLOT_GROUP(long_4),
    QZ_SLOT_GROUP(long_6),
    QZ_SLOT_GROUP(long_7),
    QZ_SLOT_GROUP(long_13),
    QZ_SLOT_GROUP(long_14),
    QZ_SLOT_GROUP(long_12),
    QZ_SLOT_GROUP(long_11),
    QZ_SLOT_GROUP(rec_20),
};

// The documented slot numbers.
#define QZ_CHECK_SLOT(field, number, width)                                                                            \
    static_assert(QZ_SLOT_GROUP(field).first == (number) && QZ_SLOT_GROUP(field).slots == (width))
QZ_CHECK_SLOT(rec_1, 0, 2);
QZ_CHECK_SLOT(rec_2, 2, 1);
QZ_CHECK_SLOT(rec_3, 3, 1);
QZ_CHECK_SLOT(macc, 4, 2);
QZ_CHECK_SLOT(defect_pixel_correction, 6, 2);
QZ_CHECK_SLOT(noise_reduction, 8, 2);
QZ_CHECK_SLOT(edge_enhancement, 10, 2);
QZ_CHECK_SLOT(y_edge_enhancement, 12, 2);
QZ_CHECK_SLOT(fringe_control, 14, 4);
QZ_CHECK_SLOT(chroma_nr, 18, 3);
QZ_CHECK_SLOT(ctc_config, 21, 1);
QZ_CHECK_SLOT(rec_13, 22, 1);
QZ_CHECK_SLOT(temporal_noise_reduction, 23, 2);
QZ_CHECK_SLOT(xnr, 25, 2);
QZ_CHECK_SLOT(rec_16, 27, 1);
QZ_CHECK_SLOT(unused, 28, 2);
QZ_CHECK_SLOT(long_3, 30, 2);
QZ_CHECK_SLOT(long_5, 32, 2);
QZ_CHECK_SLOT(long_4, 34, 2);
QZ_CHECK_SLOT(long_6, 36, 2);
QZ_CHECK_SLOT(long_7, 38, 2);
QZ_CHECK_SLOT(long_13, 40, 2);
QZ_CHECK_SLOT(long_14, 42, 2);
QZ_CHECK_SLOT(long_12, 44, 2);
QZ_CHECK_SLOT(long_11, 46, 2);
QZ_CHECK_SLOT(rec_20, 48, 2);
#undef QZ_CHECK_SLOT

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
