// The inputs of a frame that are plain numbers, by the names that a scene gives them.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <optional>
#include <span>
#include <string_view>

#include "desk/base/fields.h"
#include "desk/scene/scene.h"
#include "qz_isp/color.h"

namespace qz::desk {

// A struct of a frame's inputs.
struct input_group {
    std::string_view path;                 // its names from the frame on, with dots between; empty for the frame itself
    std::span<const field> fields;         // offsets from the start of the struct
    void *(*record)(frame_inputs &inputs); // the struct; made first, correcting nothing, where the frame has none
    const void *(*find)(const frame_inputs &inputs); // the struct; null where the frame has none
};

// A group stands after the one whose path its own begins with.
std::span<const input_group> input_groups();

std::span<const field> sensor_fields();

// The bits of the effect flag word, from the lowest on.
struct named_effect {
    isp_effect bit;
    std::string_view name;
};
constexpr named_effect named_effects[] = {
    {ISP_EFFECT_MACC_1, "macc_1"},       {ISP_EFFECT_MACC_2, "macc_2"},
    {ISP_EFFECT_MACC_3, "macc_3"},       {ISP_EFFECT_MACC_4, "macc_4"},
    {ISP_EFFECT_MACC_5, "macc_5"},       {ISP_EFFECT_WARM_GREY, "warm_grey"},
    {ISP_EFFECT_TWO_LEVEL, "two_level"}, {ISP_EFFECT_NEGATIVE, "negative"},
    {ISP_EFFECT_VIVID, "vivid"},         {ISP_EFFECT_NEGATIVE_ALT, "negative_alt"},
    {ISP_EFFECT_GREY, "grey"},           {ISP_EFFECT_COOL_GREY, "cool_grey"},
};

constexpr auto effect_names = [] {
    std::array<std::string_view, std::size(named_effects)> names = {};
    std::ranges::transform(named_effects, names.begin(), &named_effect::name);
    return names;
}();

// Nothing for a name that is none.
constexpr std::optional<uint32_t> effect_bit(std::string_view name)
{
    const auto *const found = std::ranges::find(named_effects, name, &named_effect::name);
    return found != std::end(named_effects) ? std::optional<uint32_t>(found->bit) : std::nullopt;
}

} // namespace qz::desk
