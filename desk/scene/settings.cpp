#include "desk/scene/settings.h"

#include "desk/scene/named_input.h"

namespace qz::desk {

void apply_settings(const std::vector<std::string> &settings, scene &scene, const frame_choice &chosen)
{
    for (const std::string &text : settings) {
        const value_option option = {"set", text};
        const auto [name, value] = option.name_and_value();
        for (size_t frame = chosen.first; frame < chosen.last; ++frame) {
            const named_input input = find_input(option, name, scene.frames[frame]);
            input.set(input.value(option, value));
        }
    }
}

} // namespace qz::desk
