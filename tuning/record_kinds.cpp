#include "tuning/record_kinds.h"

#include "tuning/slots.h"

namespace qz {
namespace {

constexpr uint8_t rows_320_at = 10;
constexpr uint8_t rows_long_at = 20;

// A gain-indexed record whose rows start with a u16 key.
constexpr record_kind short_rows(slot_group group, uint16_t row_size, filing how = filing::plain)
{
    return {how, group.first, rows_320_at, rows_320_at, row_counter::u16_at_8, row_size};
}

// A gain-indexed record of 32-bit rows, each a key and @p values values.
constexpr record_kind long_rows(slot_group group, uint16_t values)
{
    const auto row_size = static_cast<uint16_t>(4 * (values + 1));
    return {filing::plain, group.first, rows_long_at, rows_long_at, row_counter::i32_at_16, row_size};
}

// A record that is held with a payload whose contents nobody reads.
constexpr record_kind held(slot_group group, uint8_t payload)
{
    return {.how = filing::plain, .slot = group.first, .payload = payload, .fixed_size = payload};
}

// A record that is read at fixed byte positions below @p fixed_size.
constexpr record_kind whole(slot_group group, uint8_t fixed_size, filing how = filing::plain)
{
    return {.how = how, .slot = group.first, .fixed_size = fixed_size};
}

constexpr record_kind dropped = {.how = filing::dropped};

constexpr record_kind rec_1 = held(QZ_SLOT_GROUP(rec_1), 24);
constexpr record_kind rec_2 = whole(QZ_SLOT_GROUP(rec_2), 8);
constexpr record_kind macc = short_rows(QZ_SLOT_GROUP(macc), 132);
constexpr record_kind rec_13 = whole(QZ_SLOT_GROUP(rec_13), 12, filing::rec_13);
constexpr record_kind rec_16 = whole(QZ_SLOT_GROUP(rec_16), 12);

record_kind short_kind(uint32_t offset)
{
    switch (offset) {
    case 1: return rec_1;
    case 2: return rec_2;
    case 3: return whole(QZ_SLOT_GROUP(rec_3), 14);
    case 5: return macc;
    case 6: return short_rows(QZ_SLOT_GROUP(defect_pixel_correction), 6);
    case 7: return short_rows(QZ_SLOT_GROUP(noise_reduction), 12);
    case 8: return short_rows(QZ_SLOT_GROUP(edge_enhancement), 8);
    case 9: return short_rows(QZ_SLOT_GROUP(y_edge_enhancement), 10);
    case 10: return short_rows(QZ_SLOT_GROUP(fringe_control), 18, filing::fringe_control);
    case 11: return short_rows(QZ_SLOT_GROUP(chroma_nr), 10, filing::chroma_nr);
    case 12: return whole(QZ_SLOT_GROUP(ctc_config), 30);
    case 13: return rec_13;
    case 14: return short_rows(QZ_SLOT_GROUP(temporal_noise_reduction), 8);
    case 15: return short_rows(QZ_SLOT_GROUP(xnr), 4);
    case 16: return rec_16;
    case 18: return short_rows(QZ_SLOT_GROUP(chroma_nr), 18, filing::chroma_nr_alt);
    case 20: return held(QZ_SLOT_GROUP(rec_20), 20);
    case 4:
    case 17: return dropped;
    default: return {};
    }
}

record_kind long_kind(record_family family, uint32_t offset)
{
    switch (offset) {
    case 1: return rec_1;
    case 2: return rec_2;
    case 3: return long_rows(QZ_SLOT_GROUP(long_3), 3);
    case 4: return family == record_family::f768 ? held(QZ_SLOT_GROUP(long_4), rows_long_at) : dropped;
    case 5: return long_rows(QZ_SLOT_GROUP(long_5), 147);
    case 6: return long_rows(QZ_SLOT_GROUP(long_6), 295);
    case 7: return long_rows(QZ_SLOT_GROUP(long_7), 62);
    case 10: return macc;
    case 11: return long_rows(QZ_SLOT_GROUP(long_11), 14);
    case 12: return long_rows(QZ_SLOT_GROUP(long_12), 97);
    case 13: return long_rows(QZ_SLOT_GROUP(long_13), 6);
    case 14: return family == record_family::f768 ? held(QZ_SLOT_GROUP(long_14), rows_long_at) : dropped;
    case 15: return rec_13;
    case 16: return rec_16;
    default: return dropped;
    }
}

} // namespace

record_kind kind_of(record_family family, uint32_t offset)
{
    return family == record_family::f320 ? short_kind(offset) : long_kind(family, offset);
}

} // namespace qz
