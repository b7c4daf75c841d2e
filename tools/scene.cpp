#include "scene.h"

#include <algorithm>

#include <fmt/format.h>

#include "json_fields.h"

namespace qz::tool {

namespace {

constexpr std::array control_fields = {
    QZ_FIELD(isp_input_params, tuning_mode),   QZ_FIELD(isp_input_params, gamma_257),
    QZ_FIELD(isp_input_params, nr_mode),       QZ_FIELD(isp_input_params, nr_strength),
    QZ_FIELD(isp_input_params, edge_mode),     QZ_FIELD(isp_input_params, sharpness),
    QZ_FIELD(isp_input_params, brightness),    QZ_FIELD(isp_input_params, contrast),
    QZ_FIELD(isp_input_params, hue),           QZ_FIELD(isp_input_params, saturation),
    QZ_FIELD(isp_input_params, block9_control)};

constexpr std::array geometry_fields = {QZ_FIELD(isp_geometry, unused), QZ_FIELD(isp_geometry, width),
                                        QZ_FIELD(isp_geometry, height)};
constexpr std::array scaling_fields = {
    QZ_FIELD(isp_frame_desc, horizontal_numerator), QZ_FIELD(isp_frame_desc, horizontal_denominator),
    QZ_FIELD(isp_frame_desc, vertical_numerator), QZ_FIELD(isp_frame_desc, vertical_denominator)};
constexpr std::array exposure_fields = {QZ_FIELD(isp_exposure, unused), QZ_FIELD(isp_exposure, analog_gain),
                                        QZ_FIELD(isp_exposure, digital_gain)};
constexpr std::array scene_fields = {QZ_FIELD(isp_scene_params, unused), QZ_FIELD(isp_scene_params, macc_target),
                                     QZ_FIELD(isp_scene_params, saturation_decrement)};
constexpr std::array colour_fields = {QZ_FIELD(isp_colour_params, ccm),
                                      QZ_FIELD(isp_colour_params, black_level),
                                      QZ_FIELD(isp_colour_params, white_balance_gain),
                                      QZ_FIELD(isp_colour_params, unused),
                                      QZ_FIELD(isp_colour_params, saturation),
                                      QZ_FIELD(isp_colour_params, gamma_parameter)};
constexpr std::array sensor_fields = {QZ_FIELD(isp_sensor_description, unused), QZ_FIELD(isp_sensor_description, width),
                                      QZ_FIELD(isp_sensor_description, height),
                                      QZ_FIELD(isp_sensor_description, bit_depth),
                                      QZ_FIELD(isp_sensor_description, unused_2)};

// What a sub-record has where the scene names only some of its fields: no correction.
constexpr isp_frame_desc plain_frame = {{{0, 0}, 0, 0}, 1, 1, 1, 1};
constexpr isp_exposure plain_exposure = {0, 1.0f, 1.0f};
constexpr isp_colour_params plain_colour = {
    {1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 0, 0}, {1, 1, 1, 1}, {0, 0, 0, 0, 0}, 1.0f, 1.0f};

// Bit k of the effect flag word.
constexpr std::string_view effect_names[] = {"macc_1",    "macc_2",   "macc_3", "macc_4",       "macc_5", "warm_grey",
                                             "two_level", "negative", "vivid",  "negative_alt", "grey",   "cool_grey"};

std::vector<std::string_view> joined(std::vector<std::string_view> names, std::span<const field> more)
{
    const std::vector<std::string_view> others = field_names(more);
    names.insert(names.end(), others.begin(), others.end());
    return names;
}

uint32_t read_effects(const json_node &node)
{
    if (node.is_number())
        return static_cast<uint32_t>(node.integer(0, UINT32_MAX));
    uint32_t effects = 0;
    for (const json_node &item : node.items()) {
        const auto *const name = std::ranges::find(effect_names, item.text());
        if (name == std::end(effect_names))
            item.fail(fmt::format("\"{}\"", item.text()), fmt::format("one of {}", fmt::join(effect_names, ", ")));
        effects |= 1u << (name - std::begin(effect_names));
    }
    return effects;
}

template <typename Record>
std::optional<Record> read_record(const json_node &parent, std::string_view name, std::span<const field> fields,
                                  const Record &plain)
{
    const std::optional<json_node> node = parent.find(name);
    if (!node)
        return std::nullopt;
    node->expect_names(field_names(fields));
    Record record = plain;
    read_fields(*node, fields, &record);
    return record;
}

std::optional<isp_frame_desc> read_frame_desc(const json_node &parent)
{
    const std::optional<json_node> node = parent.find("frame");
    if (!node)
        return std::nullopt;
    node->expect_names(joined({"size"}, scaling_fields));
    isp_frame_desc frame = plain_frame;
    read_fields(*node, scaling_fields, &frame);
    frame.size = read_record(*node, "size", geometry_fields, isp_geometry{}).value_or(isp_geometry{});
    return frame;
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
    node.expect_names(
        joined({"frame", "exposure", "scene", "gamma", "colour", "lsc", "effects", "aux_size", "selection_list"},
               control_fields));
    frame_inputs inputs = {};
    read_fields(node, control_fields, &inputs.controls);
    if (const std::optional<json_node> effects = node.find("effects"))
        inputs.controls.effects = read_effects(*effects);
    inputs.frame = read_frame_desc(node);
    inputs.exposure = read_record(node, "exposure", exposure_fields, plain_exposure);
    inputs.scene = read_record(node, "scene", scene_fields, isp_scene_params{});
    inputs.gamma = read_gamma(node);
    inputs.colour = read_record(node, "colour", colour_fields, plain_colour);
    inputs.lsc = read_shading(node);
    inputs.aux_size = read_record(node, "aux_size", geometry_fields, isp_geometry{});
    inputs.selection_list = read_selection_list(node);
    return inputs;
}

// Every frame is a merge patch on the inputs of the frame before it, unless it says "inherit": false.
std::vector<frame_inputs> read_frames(const json_node &list, const std::string &file)
{
    const json_node nothing = read_document(file, "{}");
    std::vector<frame_inputs> frames;
    json_node inputs = nothing;
    for (const json_node &node : list.items()) {
        const std::optional<json_node> name = node.find("name");
        const std::optional<json_node> inherit = node.find("inherit");
        const json_node &base = inherit && !inherit->boolean() ? nothing : inputs;
        inputs = base.patched(node, {"name", "inherit", "comment"});
        frames.push_back(read_frame(inputs));
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
    cmc.sensor_description = read_record(*node, "sensor_description", sensor_fields, isp_sensor_description{});
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
    const json_node root = read_document(file, text);
    root.expect_names({"grid", "cmc", "frames"});

    scene result = {};
    if (const std::optional<json_node> grid = root.find("grid")) {
        grid->expect_names({"width", "height"});
        result.grid_width = static_cast<uint32_t>(grid->at("width").integer(0, UINT32_MAX));
        result.grid_height = static_cast<uint32_t>(grid->at("height").integer(0, UINT32_MAX));
    }
    result.cmc = read_characterisation(root);
    result.frames = read_frames(root.at("frames"), file);
    return result;
}

} // namespace qz::tool
