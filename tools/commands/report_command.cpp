#include <nlohmann/json.hpp>

#include "desk/report/data.h"
#include "desk/run/settings.h"
#include "desk/tuning/load.h"
#include "tools/base/browser.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/base/report_page.h"
#include "tools/commands/commands.h"

namespace qz::tool {

using namespace desk;

namespace {

// A file for the page to compute from: JSON as it is, containers in base64. The path is that of the command line.
json page_file(const std::string &name, const std::optional<std::string> &path, byte_view bytes)
{
    json file = {{"name", name}};
    if (path)
        file["path"] = *path;
    if (is_container(bytes))
        file["base64"] = base64_text(bytes);
    else
        file["text"] = text_of(bytes);
    return file;
}

} // namespace

int report(const report_options &options)
{
    expect_page(built_in_page, "report");
    if (options.open && options.page == "-")
        throw usage_error("--open: found standard output, expected a file that a browser can show");
    expect_one_standard_input(options.inputs);
    const std::string tuning = tuning_name(options.inputs);
    const std::string scene_file = scene_name(options.inputs);
    const byte_buffer tuning_file = tuning_bytes(options.inputs);
    const byte_buffer scene_text = scene_bytes(options.inputs);
    scene scene = read_scene(scene_file, text_of(scene_text));
    const frame_choice chosen = choose_frames(scene, options.frame);
    byte_buffer container = usable_container(tuning, tuning_file);
    apply_settings(options.settings, scene, chosen, container);
    json data = {{"tuning", tuning}, {"scene", scene_file}};
    data.update(report_data(scene, container, tuning, chosen));
    std::optional<byte_buffer> against;
    if (options.against) {
        const std::string name = input_name(*options.against);
        against = read_file(*options.against);
        data["against"] = report_data(scene, usable_container(name, *against), name, chosen);
        data["against"]["tuning"] = name;
    }
    const std::string_view module = options.is_static ? std::string_view() : built_in_module;
    if (!module.empty())
        data["files"] = {{"tuning", page_file(tuning, options.inputs.tuning, tuning_file)},
                         {"scene", page_file(scene_file, options.inputs.scene, scene_text)},
                         {"settings", options.settings}};
    if (against && !module.empty())
        data["files"]["against"] = page_file(input_name(*options.against), options.against, *against);
    std::vector<std::string> sources = source_files(options.inputs);
    if (options.against)
        sources.push_back(*options.against);
    write_text(options.page, filled(built_in_page, data, module), sources);
    if (options.open)
        open_in_browser(options.page);
    return exit_success;
}

} // namespace qz::tool
