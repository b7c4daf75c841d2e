#include <nlohmann/json.hpp>

#include "commands.h"
#include "report_data.h"
#include "report_page.h"

namespace qz::tool {

int report(const report_options &options)
{
    expect_one_standard_input(options.inputs);
    const scene inputs = load_scene(options.inputs);
    const std::string tuning = tuning_name(options.inputs);
    json data = {{"tuning", tuning}, {"scene", scene_name(options.inputs)}};
    data.update(report_data(inputs, load_container(options.inputs), tuning, chosen_frames(inputs, options.frame)));
    write_text(options.page, filled(built_in_page, data));
    return exit_success;
}

} // namespace qz::tool
