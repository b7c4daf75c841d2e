#include "desk/scene/to_json.h"

#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "desk/base/numbers.h"
#include "desk/json/fields.h"
#include "desk/json/text.h"
#include "desk/scene/frame_fields.h"

namespace qz::desk {

namespace {

// Of single precision: the shortest digits that read back as the same number.
void shorten(json &value)
{
    if (value.is_number_float())
        value = *number_of(fmt::format("{}", static_cast<float>(value.get<double>())));
    else if (value.is_structured())
        std::ranges::for_each(value, shorten);
}

json curve_json(const curve &points)
{
    return points ? json(*points) : json(nullptr);
}

json grid_json(const curve &gains, size_t width)
{
    if (!gains)
        return nullptr;
    json rows = json::array();
    for (auto row = gains->begin(); width != 0 && row != gains->end(); row += static_cast<ptrdiff_t>(width))
        rows.push_back(json(std::vector<float>(row, row + static_cast<ptrdiff_t>(width))));
    return rows;
}

json shading_json(const shading_inputs &shading)
{
    json grids = json::array();
    for (const curve &grid : shading.grids) {
        grids.push_back(grid_json(grid, shading.width));
        // Rows without a column are rows still.
        if (grid && shading.width == 0)
            grids.back() = json(std::vector<json>(shading.height, json::array()));
    }
    return {
        {"enable", shading.enable}, {"width", shading.width}, {"height", shading.height}, {"grid", std::move(grids)}};
}

json frame_json(const frame_inputs &frame, bool is_first)
{
    json made = json::object();
    if (!frame.name.empty())
        made["name"] = frame.name;
    if (!is_first)
        made["inherit"] = false;
    for (const input_group &group : input_groups()) {
        const void *record = group.find(frame);
        if (record == nullptr)
            continue;
        json *object = &made;
        for (size_t start = 0, end = 0; !group.path.empty() && end != std::string_view::npos; start = end + 1) {
            end = group.path.find('.', start);
            object = &(*object)[std::string(group.path.substr(start, end - start))];
        }
        write_fields(*object, group.fields, record);
    }
    made["effects"] = frame.controls.effects;
    if (frame.gamma) {
        json curves = json::array();
        for (const curve &points : frame.gamma->curves)
            curves.push_back(curve_json(points));
        made["gamma"] = {{"curve", std::move(curves)}, {"point_count", frame.gamma->point_count}};
    }
    if (frame.lsc)
        made["lsc"] = shading_json(*frame.lsc);
    if (frame.selection_list)
        made["selection_list"] = std::vector(frame.selection_list->begin(), frame.selection_list->end() - 1);
    return made;
}

json characterisation_json(const characterisation &cmc)
{
    json made = json::object();
    if (cmc.sensor_description)
        write_fields(made["sensor_description"], sensor_fields(), &*cmc.sensor_description);
    if (cmc.entries)
        made["entry_table"] = *cmc.entries;
    return made;
}

} // namespace

std::string scene_source(const scene &scene)
{
    json made = {{"grid", {{"width", scene.grid_width}, {"height", scene.grid_height}}}};
    if (scene.cmc)
        made["cmc"] = characterisation_json(*scene.cmc);
    json &frames = made["frames"] = json::array();
    for (const frame_inputs &frame : scene.frames)
        frames.push_back(frame_json(frame, frames.empty()));
    shorten(made);
    return json_text(made);
}

} // namespace qz::desk
