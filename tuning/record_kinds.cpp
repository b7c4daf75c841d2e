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
    static_assert(start_of(ISP_LAYOUT_##layout, start) == (start), #name " starts where its layout says");
ISP_TUNING_RECORDS(QZ_CHECK_RECORD)
#undef QZ_CHECK_RECORD
static_assert(sizeof(isp_fringe_control_extra_row) == 8);
static_assert(sizeof(isp_selection_rule) == 16);

static_assert(std::ranges::all_of(slot_groups,
                                  [](slot_group group) {
                                      return std::ranges::find(kinds, group.first, &record_kind::slot) !=
                                             std::end(kinds);
                                  }),
              "every slot has a kind of record");
static_assert(std::ranges::all_of(kinds,
                                  [](const record_kind &kind) {
                                      return std::ranges::find(slot_groups, kind.slot, &slot_group::first) !=
                                             std::end(slot_groups);
                                  }),
              "every kind of record has a slot");

enum id_family : uint8_t { family_320, family_768, family_1536, family_count };

// By family; 0: none.
using id_offsets = std::array<uint8_t, family_count>;

#define QZ_OFFSETS(name, slot, in_320, in_768, in_1536, layout, start, part, size) id_offsets{in_320, in_768, in_1536},
constexpr id_offsets offsets[] = {ISP_TUNING_RECORDS(QZ_OFFSETS)};
#undef QZ_OFFSETS

// By id offset, a number in kinds or one of these.
using kind_numbers = std::array<uint8_t, ISP_TUNING_GROUP_IDS>;
constexpr uint8_t dropped = 0xfe;
constexpr uint8_t refused = 0xff;

consteval kind_numbers numbers_in(id_family family)
{
    kind_numbers numbers;
    numbers.fill(family == family_320 ? refused : dropped);
#define QZ_DROPPED(offset)                                                                                             \
    if (family == family_320)                                                                                          \
        numbers[offset] = dropped;
    ISP_TUNING_DROPPED_IN_320(QZ_DROPPED)
#undef QZ_DROPPED
    uint8_t number = 0;
    for (const id_offsets &each : offsets) {
        if (each[family] != 0)
            numbers[each[family]] = number;
        ++number;
    }
    return numbers;
}

constexpr kind_numbers numbers[] = {numbers_in(family_320), numbers_in(family_768), numbers_in(family_1536)};

consteval bool offsets_are_unique(id_family family)
{
    return std::ranges::count_if(offsets, [=](const id_offsets &each) { return each[family] != 0; }) ==
           std::ranges::count_if(numbers[family], [](uint8_t number) { return number < std::size(kinds); });
}
static_assert(offsets_are_unique(family_320) && offsets_are_unique(family_768) && offsets_are_unique(family_1536),
              "no two kinds of record have one id");

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
