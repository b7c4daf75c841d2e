#include "tools/text/names_text.h"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "desk/scene/input_by_name.h"
#include "desk/sweep/columns.h"
#include "desk/tuning/value_by_name.h"

namespace qz::tool {

using namespace desk;

namespace {

std::string name_lines(std::string_view what, const std::vector<value_names> &names)
{
    std::string text;
    for (const value_names &each : names) {
        const std::string name = each.last.empty() ? each.first : fmt::format("{} to {}", each.first, each.last);
        text += fmt::format("{:<7} {:<60} {}\n", what, name, each.values);
    }
    return text;
}

} // namespace

std::string names_text(const scene &scene, byte_view container)
{
    std::string text = name_lines("input", input_names()) +
                       name_lines("tuning", tuning_value_names(read_container("tuning", container)));
    for (const std::string &name : column_names())
        text += fmt::format("field   {}\n", name);
    for (const frame_inputs &frame : scene.frames) {
        if (!frame.name.empty())
            text += fmt::format("frame   {}\n", frame.name);
    }
    return text;
}

} // namespace qz::tool
