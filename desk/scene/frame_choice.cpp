#include "desk/scene/frame_choice.h"

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/base/numbers.h"

namespace qz::desk {

frame_choice choose_frames(const scene &scene, const std::optional<std::string> &choice)
{
    const size_t count = scene.frames.size();
    if (!choice)
        return {count - 1, count};
    if (*choice == "all")
        return {0, count};
    for (size_t i = 0; i < count; ++i) {
        if (!choice->empty() && scene.frames[i].name == *choice)
            return {i, i + 1};
    }
    const std::optional<uint64_t> index = whole_number_of(*choice);
    if (!index || *index >= count)
        fail({std::nullopt, "frame", fmt::format("\"{}\"", *choice),
              fmt::format("0 to {}, a frame's name, or all", count - 1)});
    return {static_cast<size_t>(*index), static_cast<size_t>(*index) + 1};
}

} // namespace qz::desk
