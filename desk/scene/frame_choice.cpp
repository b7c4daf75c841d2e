#include "desk/scene/frame_choice.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/base/numbers.h"

namespace qz::desk {

frame_choice choose_frames(const scene &scene, const std::optional<std::string> &choice)
{
    const size_t count = scene.frames.size();
    if (!choice)
        return {count - 1, count};
    if (*choice == all_frames)
        return {0, count};
    if (const std::optional<uint64_t> index = whole_number_of(*choice); index && *index < count)
        return {static_cast<size_t>(*index), static_cast<size_t>(*index) + 1};
    const std::string found = fmt::format("\"{}\"", *choice);
    const auto named = [&](const frame_inputs &frame) { return !frame.name.empty() && frame.name == *choice; };
    const auto frame = std::ranges::find_if(scene.frames, named);
    if (frame == scene.frames.end())
        fail({std::nullopt, "frame", found, fmt::format("0 to {}, a frame's name, or all", count - 1)});
    if (const auto frames = std::ranges::count_if(scene.frames, named); frames > 1)
        fail({std::nullopt, "frame", fmt::format("{}, which {} frames are called", found, frames), "a number"});
    const auto index = static_cast<size_t>(frame - scene.frames.begin());
    return {index, index + 1};
}

} // namespace qz::desk
