#include "desk/scene/scene.h"

#include <algorithm>

#include <fmt/format.h>

#include "desk/base/one_of.h"
#include "desk/json/fields.h"
#include "desk/scene/frame_fields.h"

namespace qz::desk {

namespace {

uint32_t read_effects(const json_node &node)
{
    if (node.is_number())
        return static_cast<uint32_t>(node.integer(0, UINT32_MAX));
    uint32_t effects = 0;
    for (const json_node &item : node.items()) {
        const std::optional<uint32_t> bit = effect_bit(item.text());
        if (!bit)
            item.fail(fmt::format("\"{}\"", item.text()), one_of(effect_names, item.text()));
        effects |= *bit;
    }
    return effects;
}

// The names that may stand in an input group: its fields and the groups inside it.
std::vector<std::string_view> names_in(std::string_view path)
{
    std::vector<std::string_view> names;
    for (const input_group &group : input_groups()) {
        const size_t dot = group.path.rfind('.');
        const std::string_view parent = dot == std::string_view::npos ? "" : group.path.substr(0, dot);
        if (group.path == path)
            names = field_names(group.fields);
        else if (parent == path)
            names.push_back(group.path.substr(dot + 1)); // npos + 1 is 0
    }
    return names;
}

std::optional<json_node> find_path(const json_node &node, std::string_view path)
{
    const size_t dot = path.find('.');
    const std::optional<json_node> found = node.find(path.substr(0, dot));
    return found && dot != std::string_view::npos ? find_path(*found, path.substr(dot + 1)) : found;
}

void read_groups(const json_node &frame, frame_inputs &inputs)
{
    for (const input_group &group : input_groups()) {
        const std::optional<json_node> node = group.path.empty() ? frame : find_path(frame, group.path);
        if (!node)
            continue;
        if (!group.path.empty())
            node->expect_names(names_in(group.path));
        read_fields(*node, group.fields, group.record(inputs));
    }
}

void read_numbers(const json_node &list, std::vector<float> &numbers)
{
    for (const json_node &item : list.items())
        numbers.push_back(item.single());
}

std::optional<gamma_inputs> read_gamma(const json_node &parent)
{
    const std::optional<json_node> node = parent.find("gamma");
    if (!node)
        return std::nullopt;
    node->expect_names({"curve", "point_count"});

    gamma_inputs gamma = {{}, 2};
    bool any = false;
    if (const std::optional<json_node> list = node->find("curve")) {
        size_t channel = 0;
        for (const json_node &item : list->items(gamma.curves.size())) {
            curve &points = gamma.curves[channel++];
            if (item.is_null())
                continue;
            read_numbers(item, points.emplace());
            if (any && points->size() != gamma.point_count)
                item.fail(fmt::format("{} points", points->size()),
                          fmt::format("{} as in the curve before", gamma.point_count));
            gamma.point_count = static_cast<uint32_t>(points->size());
            any = true;
        }
    }
    if (const std::optional<json_node> count = node->find("point_count")) {
        if (any)
            count->integer(gamma.point_count, gamma.point_count);
        gamma.point_count = static_cast<uint32_t>(count->integer(0, UINT32_MAX));
    }
    return gamma;
}

void read_grid(const json_node &node, const shading_inputs &shading, std::vector<float> &gains)
{
    for (const json_node &row : node.items(shading.height)) {
        for (const json_node &item : row.items(shading.width))
            gains.push_back(item.single());
    }
}

std::optional<shading_inputs> read_shading(const json_node &parent)
{
    const std::optional<json_node> node = parent.find("lsc");
    if (!node)
        return std::nullopt;
    node->expect_names({"grid", "width", "height", "enable"});

    shading_inputs shading = {};
    shading.width = static_cast<uint16_t>(node->at("width").integer(0, UINT16_MAX));
    shading.height = static_cast<uint16_t>(node->at("height").integer(0, UINT16_MAX));
    shading.enable = static_cast<uint8_t>(node->at("enable").integer(0, UINT8_MAX));
    size_t channel = 0;
    for (const json_node &item : node->at("grid").items(shading.grids.size())) {
        curve &grid = shading.grids[channel++];
        if (!item.is_null())
            read_grid(item, shading, grid.emplace());
    }
    return shading;
}

std::optional<std::vector<uint32_t>> read_selection_list(const json_node &parent)
{
    const std::optional<json_node> node = parent.find("selection_list");
    if (!node)
        return std::nullopt;
    std::vector<uint32_t> list;
    for (const json_node &item : node->items())
        list.push_back(static_cast<uint32_t>(item.integer(0, UINT32_MAX)));
    list.push_back(0);
    return list;
}

frame_inputs read_frame(const json_node &node)
{
    std::vector<std::string_view> names = names_in("");
    names.insert(names.end(), {"gamma", "lsc", "effects", "selection_list"});
    node.expect_names(names);
    frame_inputs inputs = {};
    read_groups(node, inputs);
    if (const std::optional<json_node> effects = node.find("effects"))
        inputs.controls.effects = read_effects(*effects);
    inputs.gamma = read_gamma(node);
    inputs.lsc = read_shading(node);
    inputs.selection_list = read_selection_list(node);
    return inputs;
}

// Every frame is a merge patch on the inputs of the frame before it, unless it says "inherit": false.
std::vector<frame_inputs> read_frames(const json_node &list)
{
    std::vector<frame_inputs> frames;
    frames.reserve(list.items().size());
    std::optional<json_document> before;
    for (const json_node &node : list.items()) {
        const std::optional<json_node> name = node.find("name");
        const std::optional<json_node> inherit = node.find("inherit");
        const bool inherits = before && (!inherit || inherit->boolean());
        json_document inputs =
            node.patch(inherits ? std::optional<json_node>(*before) : std::nullopt, {"name", "inherit", "comment"});
        frames.push_back(read_frame(json_node(inputs)));
        before = std::move(inputs);
        frames.back().name = name ? name->text() : "";
    }
    if (frames.empty())
        list.fail_type("at least one frame");
    return frames;
}

std::optional<characterisation> read_characterisation(const json_node &parent)
{
    const std::optional<json_node> node = parent.find("cmc");
    if (!node)
        return std::nullopt;
    node->expect_names({"sensor_description", "entry_table"});
    characterisation cmc;
    if (const std::optional<json_node> sensor = node->find("sensor_description")) {
        sensor->expect_names(field_names(sensor_fields()));
        read_fields(*sensor, sensor_fields(), &cmc.sensor_description.emplace());
    }
    if (const std::optional<json_node> table = node->find("entry_table")) {
        cmc.entries.emplace();
        for (const json_node &item : table->items()) {
            std::array<uint32_t, 4> &entry = cmc.entries->emplace_back();
            std::ranges::transform(item.items(entry.size()), entry.begin(), [](const json_node &word) {
                return static_cast<uint32_t>(word.integer(0, UINT32_MAX));
            });
        }
    }
    return cmc;
}

} // namespace

scene read_scene(const std::string &file, std::string_view text)
{
    const json_document document = parse_json(file, text);
    const json_node root(document);
    root.expect_names({"grid", "cmc", "frames"});

    scene result = {};
    if (const std::optional<json_node> grid = root.find("grid")) {
        grid->expect_names({"width", "height"});
        result.grid_width = static_cast<uint32_t>(grid->at("width").integer(0, UINT32_MAX));
        result.grid_height = static_cast<uint32_t>(grid->at("height").integer(0, UINT32_MAX));
        if (uint64_t{result.grid_width} * result.grid_height > UINT32_MAX)
            grid->fail(fmt::format("{} x {} cells", result.grid_width, result.grid_height), "at most 4294967295");
    }
    result.cmc = read_characterisation(root);
    result.frames = read_frames(root.at("frames"));
    return result;
}

} // namespace qz::desk
