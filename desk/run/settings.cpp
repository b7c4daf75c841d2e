#include "desk/run/settings.h"

#include "desk/scene/input_by_name.h"
#include "desk/tuning/value_by_name.h"

namespace qz::desk {

named_value find_value(const value_option &option, std::string_view name, frame_inputs &inputs, byte_buffer &container)
{
    return name.starts_with(tuning_prefix) ? find_tuning_value(option, name, container)
                                           : find_input(option, name, inputs);
}

void apply_settings(const std::vector<std::string> &settings, scene &scene, const frame_choice &chosen,
                    byte_buffer &container, std::string_view option_name)
{
    for (const std::string &text : settings) {
        const value_option option = {option_name, text};
        const auto [name, value] = option.name_and_value();
        for (size_t frame = chosen.first; frame < chosen.last; ++frame) {
            const named_value found = find_value(option, name, scene.frames[frame], container);
            found.set(found.read(option, value));
        }
    }
}

} // namespace qz::desk
