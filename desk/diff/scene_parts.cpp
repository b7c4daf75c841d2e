#include "desk/diff/scene_parts.h"

#include <algorithm>
#include <cmath>
#include <nlohmann/json.hpp>

#include <fmt/format.h>

#include "desk/json/json.h"
#include "desk/scene/frame_fields.h"

namespace qz::desk {

namespace {

// As JSON writes it: the shortest digits that read back as the same float.
std::string number_text(const field &described, const void *base, size_t index)
{
    if (described.type != element::f32)
        return std::to_string(integer_at(described, base, index));
    return fmt::format("{}", static_cast<float>(number_at(described, base, index)));
}

void add_fields(std::string_view path, std::span<const field> fields, const void *base, file_part &part)
{
    for (const field &described : fields) {
        const std::string name =
            path.empty() ? std::string(described.name) : fmt::format("{}.{}", path, described.name);
        for (size_t i = 0; i < described.count; ++i)
            part.values.push_back(
                {name, described.is_list ? fmt::format("[{}]", i) : "", number_text(described, base, i)});
    }
}

template <size_t count>
void add_curves(std::string_view field, const std::array<curve, count> &curves, file_part &part)
{
    for (size_t c = 0; c < count; ++c) {
        if (!curves[c])
            part.values.push_back({std::string(field), fmt::format("[{}]", c), "null"});
        for (size_t i = 0; curves[c] && i < curves[c]->size(); ++i)
            part.values.push_back(
                {fmt::format("{}[{}]", field, c), fmt::format("[{}]", i), fmt::format("{}", (*curves[c])[i])});
    }
}

void add_number(std::string_view field, uint64_t number, file_part &part)
{
    part.values.push_back({std::string(field), "", std::to_string(number)});
}

file_part frame_part(const frame_inputs &frame, size_t index)
{
    file_part part = {fmt::format("frame {}", index), {}, frame.name};
    part.values.push_back({"name", "", json(frame.name).dump()});
    for (const input_group &group : input_groups()) {
        if (const void *record = group.find(frame))
            add_fields(group.path, group.fields, record, part);
    }
    add_number("effects", frame.controls.effects, part);
    if (frame.gamma) {
        add_number("gamma.point_count", frame.gamma->point_count, part);
        add_curves("gamma.curve", frame.gamma->curves, part);
    }
    if (frame.lsc) {
        add_number("lsc.enable", frame.lsc->enable, part);
        add_number("lsc.width", frame.lsc->width, part);
        add_number("lsc.height", frame.lsc->height, part);
        add_curves("lsc.grid", frame.lsc->grids, part);
    }
    for (size_t i = 0; frame.selection_list && i < frame.selection_list->size(); ++i)
        part.values.push_back({"selection_list", fmt::format("[{}]", i), std::to_string((*frame.selection_list)[i])});
    return part;
}

file_part setup_part(const scene &scene)
{
    file_part part = {"sensor", {}};
    add_number("grid.width", scene.grid_width, part);
    add_number("grid.height", scene.grid_height, part);
    if (!scene.cmc)
        return part;
    if (scene.cmc->sensor_description)
        add_fields("cmc.sensor_description", sensor_fields(), &*scene.cmc->sensor_description, part);
    for (size_t i = 0; scene.cmc->entries && i < scene.cmc->entries->size(); ++i) {
        for (size_t word = 0; word < 4; ++word)
            part.values.push_back(
                {"cmc.entry_table", fmt::format("[{}][{}]", i, word), std::to_string((*scene.cmc->entries)[i][word])});
    }
    return part;
}

} // namespace

std::vector<file_part> scene_parts(const scene &scene)
{
    std::vector<file_part> parts = {setup_part(scene)};
    for (size_t i = 0; i < scene.frames.size(); ++i)
        parts.push_back(frame_part(scene.frames[i], i));
    return parts;
}

} // namespace qz::desk
