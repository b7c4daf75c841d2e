#include "tuning_layout.h"

#include <algorithm>
#include <array>

namespace qz::tool {

namespace {

// A row is a gain key and the values that apply at that gain.
constexpr std::array row_u16_1 = {element_run{element::u16, 2}};
constexpr std::array row_u16_2 = {element_run{element::u16, 3}};
constexpr std::array row_u16_3 = {element_run{element::u16, 4}};
constexpr std::array row_u16_4 = {element_run{element::u16, 5}};
constexpr std::array row_u16_5 = {element_run{element::u16, 6}};
constexpr std::array row_u16_8 = {element_run{element::u16, 9}};
constexpr std::array row_chroma = {element_run{element::u16, 1}, element_run{element::u8, 8}};
constexpr std::array row_fringe = {element_run{element::u16, 7}, element_run{element::i16, 2}};
// Type, key and sixteen 2x2 matrices.
constexpr std::array row_macc = {element_run{element::u16, 2}, element_run{element::i16, 64}};

template <uint16_t values>
constexpr std::array row_i32 = {element_run{element::i32, values + 1}};

constexpr field u16_field(std::string_view name, uint32_t count, uint32_t offset)
{
    return {name, element::u16, count, count, offset, count > 1};
}

constexpr std::array three_values = {u16_field("value", 3, 0)};
constexpr std::array two_values = {u16_field("value", 2, 0)};
constexpr std::array ctc_fields = {u16_field("scaled", 6, 0), u16_field("base_shift", 1, 12),
                                   u16_field("copied", 4, 14)};

using enum record_shape;

constexpr std::array kinds = {
    record_kind{"rec_1", 1, 1, false, raw, {}, {}},
    record_kind{"rec_2", 2, 2, false, raw, {}, {}},
    record_kind{"rec_3", 3, -1, false, fields, {}, three_values},
    record_kind{"macc", 5, 10, false, macc, row_macc, {}},
    record_kind{"defect_pixel_correction", 6, -1, false, rows16, row_u16_2, {}},
    record_kind{"noise_reduction", 7, -1, false, rows16, row_u16_5, {}},
    record_kind{"edge_enhancement", 8, -1, false, rows16, row_u16_3, {}},
    record_kind{"y_edge_enhancement", 9, -1, false, rows16, row_u16_4, {}},
    record_kind{"fringe_control", 10, -1, false, fringe, row_fringe, {}},
    record_kind{"chroma_nr", 11, -1, false, rows16, row_chroma, {}},
    record_kind{"ctc_config", 12, -1, false, fields, {}, ctc_fields},
    record_kind{"rec_13", 13, 15, false, fields, {}, two_values},
    record_kind{"temporal_noise_reduction", 14, -1, false, rows16, row_u16_3, {}},
    record_kind{"xnr", 15, -1, false, rows16, row_u16_1, {}},
    record_kind{"rec_16", 16, 16, false, fields, {}, two_values},
    record_kind{"chroma_nr_alt", 18, -1, false, rows16, row_u16_8, {}},
    record_kind{"rec_20", 20, -1, false, raw, {}, {}},
    record_kind{"long_3", -1, 3, false, rows32, row_i32<3>, {}},
    record_kind{"long_4", -1, 4, true, raw, {}, {}},
    record_kind{"long_5", -1, 5, false, rows32, row_i32<147>, {}},
    record_kind{"long_6", -1, 6, false, rows32, row_i32<295>, {}},
    record_kind{"long_7", -1, 7, false, rows32, row_i32<62>, {}},
    record_kind{"long_11", -1, 11, false, rows32, row_i32<14>, {}},
    record_kind{"long_12", -1, 12, false, rows32, row_i32<97>, {}},
    record_kind{"long_13", -1, 13, false, rows32, row_i32<6>, {}},
    record_kind{"long_14", -1, 14, true, raw, {}, {}},
};

constexpr std::array<uint16_t, 3> families = {320, 768, 1536};
constexpr uint16_t group_size = 64;
// The three groups of a family follow one another: these sets, in this order.
constexpr std::array<uint8_t, 3> group_sets = {0, 2, 1};

bool has_offset(const record_kind &kind, uint16_t family, int offset)
{
    if (family == 320)
        return kind.offset_320 == offset;
    return kind.offset_long == offset && !(kind.only_768 && family == 1536);
}

} // namespace

std::span<const record_kind> record_kinds()
{
    return kinds;
}

std::optional<record_place> find_place(uint16_t id)
{
    for (const uint16_t family : families) {
        if (id < family || id >= family + group_sets.size() * group_size)
            continue;
        const auto position = static_cast<uint16_t>(id - family);
        const auto offset = static_cast<uint8_t>(position % group_size);
        const auto *const kind =
            std::ranges::find_if(kinds, [&](const record_kind &each) { return has_offset(each, family, offset); });
        return record_place{family, group_sets[position / group_size], offset, kind == kinds.end() ? nullptr : kind};
    }
    return std::nullopt;
}

std::optional<uint16_t> id_of(const record_kind &kind, uint16_t family, uint8_t set)
{
    const int offset = family == 320 ? kind.offset_320 : kind.offset_long;
    if (offset < 0 || !has_offset(kind, family, offset))
        return std::nullopt;
    const auto group = std::ranges::find(group_sets, set) - group_sets.begin();
    return static_cast<uint16_t>(family + group * group_size + offset);
}

std::string_view slot_name(const record_kind &kind)
{
    return kind.name == "chroma_nr_alt" ? "chroma_nr" : kind.name;
}

uint32_t row_size(std::span<const element_run> row)
{
    uint32_t size = 0;
    for (const element_run &part : row)
        size += part.count * static_cast<uint32_t>(element_size(part.type));
    return size;
}

uint32_t rows_offset(record_shape shape)
{
    switch (shape) {
    case rows16:
    case fringe:
    case macc: return 10;
    case rows32: return 20;
    default: return 0;
    }
}

} // namespace qz::tool
