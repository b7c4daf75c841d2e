#include <nlohmann/json.hpp>

#include "desk/report/data.h"
#include "desk/run/settings.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/base/report_page.h"
#include "tools/commands/commands.h"

namespace qz::tool {

using namespace desk;

int report(const report_options &options)
{
    expect_page(built_in_page, "report");
    expect_one_standard_input(options.inputs);
    scene scene = load_scene(options.inputs);
    const frame_choice chosen = choose_frames(scene, options.frame);
    byte_buffer container = load_container(options.inputs);
    apply_settings(options.settings, scene, chosen, container);
    const std::string tuning = tuning_name(options.inputs);
    json data = {{"tuning", tuning}, {"scene", scene_name(options.inputs)}};
    data.update(report_data(scene, container, tuning, chosen));
    write_text(options.page, filled(built_in_page, data), source_files(options.inputs));
    return exit_success;
}

} // namespace qz::tool
