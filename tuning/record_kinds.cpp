#include "tuning/record_kinds.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "tuning/slots.h"

namespace qz {
namespace {

// Payload and fixed size follow from where the record's part starts, and from whether the slot keeps its address.
#define QZ_KIND(name, slot, in_320, in_768, in_1536, layout, start, part, size)                                        \
    {record_name::name,                                                                                                \
     QZ_SLOT_GROUP(slot).first,                                                                                        \
     QZ_SLOT_GROUP(slot).slots > 1 ? (start) : 0,                                                                      \
     (start) + (ISP_LAYOUT_##layout == ISP_LAYOUT_VALUES ? (size) : 0),                                                \
     ISP_LAYOUT_##layout,                                                                                              \
     size},
constexpr record_kind kinds[] = {ISP_TUNING_RECORDS(QZ_KIND)};
#undef QZ_KIND

constexpr size_t start_of(isp_record_layout layout, size_t listed)
{
    switch (layout) {
    case ISP_LAYOUT_HELD:
    default: return listed;
    case ISP_LAYOUT_VALUES: return ISP_RECORD_HEADER_SIZE;
    case ISP_LAYOUT_ROWS:
    case ISP_LAYOUT_ROWS_AND_MORE:
    case ISP_LAYOUT_ENTRIES: return ISP_SHORT_ROW_COUNT_AT + sizeof(uint16_t);
    case ISP_LAYOUT_LONG_ROWS: return ISP_LONG_ROW_COUNT_AT + sizeof(int32_t);
    }
}

#define QZ_CHECK_RECORD(name, slot, in_320, in_768, in_1536, layout, start, part, size)                                \
    static_assert(sizeof(part) == (size), #part " has the size of the record's rows or values");                       \
    static_assert((start) % alignof(part) == 0, #part " is read in place");                                            \
    static_assert(start_of(ISP_LAYOUT_##layout, start) == (start), #name " starts where its layout says");             \
    static_assert(groups_at(QZ_SLOT_GROUP(slot).first) == 1, #name " has a slot that ISP_TUNING_SLOTS lists");         \
    static_assert(std::max({in_320, in_768, in_1536}) > 0, #name " has an id in one of the families");                 \
    static_assert(std::max({in_320, in_768, in_1536}) < int{ISP_TUNING_GROUP_IDS}, #name " has ids within a group");
ISP_TUNING_RECORDS(QZ_CHECK_RECORD)
#undef QZ_CHECK_RECORD
static_assert(sizeof(isp_fringe_control_extra_row) == 8);
static_assert(sizeof(isp_selection_rule) == 16);

#define QZ_CHECK_SLOT(name)                                                                                            \
    static_assert(std::ranges::find(kinds, QZ_SLOT_GROUP(name).first, &record_kind::slot) != std::end(kinds),          \
                  "slot " #name " has a kind of record in ISP_TUNING_RECORDS");
ISP_TUNING_SLOTS(QZ_CHECK_SLOT)
#undef QZ_CHECK_SLOT

enum id_family : uint8_t { family_320, family_768, family_1536, family_count };

// By family; 0: none.
using id_offsets = std::array<uint8_t, family_count>;

#define QZ_OFFSETS(name, slot, in_320, in_768, in_1536, layout, start, part, size) id_offsets{in_320, in_768, in_1536},
constexpr id_offsets offsets[] = {ISP_TUNING_RECORDS(QZ_OFFSETS)};
#undef QZ_OFFSETS

#define QZ_DROPPED(offset) offset,
constexpr uint8_t dropped_in_320[] = {ISP_TUNING_DROPPED_IN_320(QZ_DROPPED)};
#undef QZ_DROPPED

// By id offset, a number in kinds or one of these.
using kind_numbers = std::array<uint8_t, ISP_TUNING_GROUP_IDS>;
constexpr uint8_t dropped = 0xfe;
constexpr uint8_t refused = 0xff;

consteval kind_numbers numbers_in(id_family family)
{
    kind_numbers numbers;
    numbers.fill(family == family_320 ? refused : dropped);
    if (family == family_320)
        for (const uint8_t offset : dropped_in_320)
            numbers[offset] = dropped;
    uint8_t number = 0;
    for (const id_offsets &each : offsets) {
        if (each[family] != 0)
            numbers[each[family]] = number;
        ++number;
    }
    return numbers;
}

constexpr kind_numbers numbers[] = {numbers_in(family_320), numbers_in(family_768), numbers_in(family_1536)};

// No other kind, nor the list of those that no slot takes, has an id of this one.
consteval bool has_ids_of_its_own(record_name name)
{
    const id_offsets &own = offsets[static_cast<size_t>(name)];
    for (size_t family = 0; family < family_count; ++family) {
        if (own[family] != 0 &&
            std::ranges::count(offsets, own[family], [=](const id_offsets &each) { return each[family]; }) != 1)
            return false;
    }
    return std::ranges::find(dropped_in_320, own[family_320]) == std::end(dropped_in_320);
}

#define QZ_CHECK_IDS(name, slot, in_320, in_768, in_1536, layout, start, part, size)                                   \
    static_assert(has_ids_of_its_own(record_name::name), #name " has ids of its own");
ISP_TUNING_RECORDS(QZ_CHECK_IDS)
#undef QZ_CHECK_IDS

struct id_group {
    id_family family;
    uint16_t first;
    uint8_t set;
};

#define QZ_GROUP(family, first, set) {family_##family, first, set},
constexpr id_group groups[] = {ISP_TUNING_GROUPS(QZ_GROUP)};
#undef QZ_GROUP

} // namespace

std::optional<record_place> place_of(uint16_t id)
{
    for (const id_group &group : groups) {
        const auto offset = static_cast<uint32_t>(id - group.first);
        if (offset >= ISP_TUNING_GROUP_IDS)
            continue;
        const uint8_t number = numbers[group.family][offset];
        return record_place{number < std::size(kinds) ? &kinds[number] : nullptr, group.set, number == refused};
    }
    return std::nullopt;
}

} // namespace qz
