#include "desk/tuning/layout.h"

#include <algorithm>
#include <array>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace qz::desk {

namespace {

// The fields of a record's struct; none of uint8_t, whose records nobody reads.
template <typename Struct>
constexpr auto fields_of = std::array<field, 0>{};

#define QZ_MEMBER(member) QZ_FIELD(self, member),
#define QZ_STRUCT(type, members)                                                                                       \
    template <>                                                                                                        \
    constexpr auto fields_of<type> = [] {                                                                              \
        using self = type;                                                                                             \
        return std::array{members};                                                                                    \
    }();
ISP_TUNING_STRUCTS(QZ_STRUCT, QZ_MEMBER)
#undef QZ_STRUCT
#undef QZ_MEMBER

// Every byte of the struct belongs to one field, in their order.
template <typename Struct>
constexpr bool is_listed_whole()
{
    size_t end = 0;
    for (const field &each : fields_of<Struct>) {
        if (each.offset != end)
            return false;
        end += each.count * element_size(each.type);
    }
    return end == sizeof(Struct);
}

#define QZ_CHECK_STRUCT(type, members) static_assert(is_listed_whole<type>(), #type " has all its members listed");
ISP_TUNING_STRUCTS(QZ_CHECK_STRUCT, )
#undef QZ_CHECK_STRUCT

#define QZ_KIND(name, slot, in_320, in_768, in_1536, layout, start, part, size)                                        \
    record_kind{#name, #slot, in_320, in_768, in_1536, ISP_LAYOUT_##layout, start, size, fields_of<part>},
constexpr std::array kinds = {ISP_TUNING_RECORDS(QZ_KIND)};
#undef QZ_KIND

#define QZ_CHECK_KIND(name, slot, in_320, in_768, in_1536, layout, start, part, size)                                  \
    static_assert((ISP_LAYOUT_##layout == ISP_LAYOUT_HELD) == fields_of<part>.empty(),                                 \
                  "ISP_TUNING_STRUCTS lists " #part " of " #name);
ISP_TUNING_RECORDS(QZ_CHECK_KIND)
#undef QZ_CHECK_KIND

struct id_group {
    uint16_t family;
    uint16_t first;
    uint8_t set;
};

#define QZ_GROUP(family, first, set) id_group{family, first, set},
constexpr std::array groups = {ISP_TUNING_GROUPS(QZ_GROUP)};
#undef QZ_GROUP

#define QZ_DROPPED(offset) offset,
constexpr uint8_t dropped_in_320[] = {ISP_TUNING_DROPPED_IN_320(QZ_DROPPED)};
#undef QZ_DROPPED

constexpr uint8_t offset_in(const record_kind &kind, uint16_t family)
{
    switch (family) {
    case 320: return kind.in_320;
    case 768: return kind.in_768;
    default: return kind.in_1536;
    }
}

// By id offset; null: none.
constexpr auto kinds_in(uint16_t family)
{
    std::array<const record_kind *, ISP_TUNING_GROUP_IDS> found = {};
    for (const record_kind &kind : kinds) {
        if (const uint8_t offset = offset_in(kind, family); offset != 0)
            found[offset] = &kind;
    }
    return found;
}
constexpr std::array kinds_by_offset = {kinds_in(families[0]), kinds_in(families[1]), kinds_in(families[2])};

} // namespace

std::span<const field> fringe_extra_row()
{
    return fields_of<isp_fringe_control_extra_row>;
}

bool record_place::refused() const
{
    return kind == nullptr && family == 320 && std::ranges::find(dropped_in_320, offset) == std::end(dropped_in_320);
}

std::string allowed_in_320()
{
    const auto is_allowed = [](uint8_t offset) {
        const std::optional<record_place> place = find_place(static_cast<uint16_t>(320 + offset));
        return place && !place->refused();
    };
    std::vector<std::string> runs;
    for (uint8_t first = 0; first < ISP_TUNING_GROUP_IDS; ++first) {
        uint8_t end = first;
        while (is_allowed(end))
            ++end;
        if (end - first > 1)
            runs.push_back(fmt::format("{} to {}", first, end - 1));
        else if (end > first)
            runs.push_back(std::to_string(first));
        first = end;
    }
    return fmt::format("{}", fmt::join(runs, " or "));
}

std::span<const record_kind> record_kinds()
{
    return kinds;
}

std::optional<record_place> find_place(uint16_t id)
{
    for (const id_group &group : groups) {
        if (id < group.first || id >= group.first + ISP_TUNING_GROUP_IDS)
            continue;
        const auto offset = static_cast<uint8_t>(id - group.first);
        const auto family = std::ranges::find(families, group.family) - families.begin();
        return record_place{group.family, group.set, offset, kinds_by_offset[static_cast<size_t>(family)][offset]};
    }
    return std::nullopt;
}

std::optional<uint16_t> id_of(const record_kind &kind, uint16_t family, uint8_t set)
{
    const uint8_t offset = offset_in(kind, family);
    if (offset == 0)
        return std::nullopt;
    const auto group = std::ranges::find_if(
        std::span(groups), [&](const id_group &each) { return each.family == family && each.set == set; });
    return static_cast<uint16_t>(group->first + offset);
}

} // namespace qz::desk
