#include <iterator>

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/explain/computed_frames.h"
#include "desk/run/settings.h"
#include "desk/sweep/columns.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"

namespace qz::tool {

using namespace desk;

namespace {

// A value alone stands by itself, for scripts; of several, each has its name before it.
std::string values_text(const std::vector<sweep_column> &columns, const record_snapshot &record)
{
    std::string text;
    for (const sweep_column &column : columns) {
        const std::optional<int64_t> value = column_value(column, record);
        const std::string digits = value ? std::to_string(*value) : "-";
        fmt::format_to(std::back_inserter(text), "{}\n", columns.size() == 1 ? digits : column.name + " " + digits);
    }
    return text;
}

} // namespace

int get(const get_options &options)
{
    expect_one_standard_input(options.inputs);
    scene scene = load_scene(options.inputs);
    const frame_choice chosen = choose_frames(scene, options.frame);
    if (chosen.last - chosen.first != 1)
        fail({std::nullopt, "frame", fmt::format("{} frames", chosen.last - chosen.first), "one"});
    byte_buffer container = load_container(options.inputs);
    apply_settings(options.settings, scene, chosen, container);
    const std::vector<sweep_column> columns = choose_columns(options.fields);
    isp_session session(std::move(container), tuning_name(options.inputs), scene);
    write_text("-", values_text(columns, compute_frames(session, scene, chosen, false).front().snapshot));
    return exit_success;
}

} // namespace qz::tool
