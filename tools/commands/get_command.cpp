#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/explain/explain.h"
#include "desk/makernote/handle.h"
#include "desk/run/settings.h"
#include "desk/sweep/columns.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"
#include "tools/text/cells.h"

namespace qz::tool {

using namespace desk;

namespace {

void append_plain(std::string &text, std::string_view value)
{
    text += value;
}

// A value alone stands by itself, for scripts; of several, each has its name before it.
std::string values_text(const std::vector<sweep_column> &columns, const column_source &values)
{
    std::string text;
    for (const sweep_column &column : columns) {
        if (columns.size() > 1)
            text += column.name + " ";
        append_cell(text, column_value(column, values), append_plain, "-");
        text += '\n';
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
    const column_needs needs = needs_of(columns);
    const makernote_handle makernote = needs.makernote ? make_makernote() : nullptr;
    isp_session session(std::move(container), tuning_name(options.inputs), scene, makernote.get());
    for (size_t before = 0; before < chosen.first; ++before)
        session.run(scene.frames[before]);
    const uint32_t first_record = makernote ? qz_mkn_record_count(makernote.get()) : 0;
    const frame_inputs &inputs = scene.frames[chosen.first];
    column_source values = {session.run(inputs), {}, {}};
    if (!needs.origins.empty())
        values.take_uses(explainer(session).explain(inputs, values.record, needs.origins));
    if (makernote)
        values.makernote.read(makernote.get(), first_record);
    write_text("-", values_text(columns, values));
    return exit_success;
}

} // namespace qz::tool
