#include "desk/scene/frame_fields.h"

#include <array>

namespace qz::desk {

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
constexpr std::array sensor = {QZ_FIELD(isp_sensor_description, unused), QZ_FIELD(isp_sensor_description, width),
                               QZ_FIELD(isp_sensor_description, height), QZ_FIELD(isp_sensor_description, bit_depth),
                               QZ_FIELD(isp_sensor_description, unused_2)};

// What a sub-record has where only some of its fields are named: no correction.
template <typename Record>
constexpr Record plain = {};
template <>
constexpr isp_frame_desc plain<isp_frame_desc> = {{{0, 0}, 0, 0}, 1, 1, 1, 1};
template <>
constexpr isp_exposure plain<isp_exposure> = {0, 1.0f, 1.0f};
template <>
constexpr isp_colour_params plain<isp_colour_params> = {
    {1, 0, 0, 0, 1, 0, 0, 0, 1}, {0, 0, 0, 0}, {1, 1, 1, 1}, {0, 0, 0, 0, 0}, 1.0f, 1.0f};

template <auto member>
void *made(frame_inputs &inputs)
{
    auto &record = inputs.*member;
    if (!record)
        record = plain<typename std::remove_reference_t<decltype(record)>::value_type>;
    return &*record;
}

template <auto member>
const void *found(const frame_inputs &inputs)
{
    const auto &record = inputs.*member;
    return record ? &*record : nullptr;
}

void *controls(frame_inputs &inputs)
{
    return &inputs.controls;
}

const void *find_controls(const frame_inputs &inputs)
{
    return &inputs.controls;
}

void *frame_size(frame_inputs &inputs)
{
    made<&frame_inputs::frame>(inputs);
    return &inputs.frame->size;
}

const void *find_frame_size(const frame_inputs &inputs)
{
    return inputs.frame ? &inputs.frame->size : nullptr;
}

constexpr input_group groups[] = {
    {"", control_fields, controls, find_controls},
    {"frame", scaling_fields, made<&frame_inputs::frame>, found<&frame_inputs::frame>},
    {"frame.size", geometry_fields, frame_size, find_frame_size},
    {"exposure", exposure_fields, made<&frame_inputs::exposure>, found<&frame_inputs::exposure>},
    {"scene", scene_fields, made<&frame_inputs::scene>, found<&frame_inputs::scene>},
    {"colour", colour_fields, made<&frame_inputs::colour>, found<&frame_inputs::colour>},
    {"aux_size", geometry_fields, made<&frame_inputs::aux_size>, found<&frame_inputs::aux_size>}};

} // namespace

std::span<const field> sensor_fields()
{
    return sensor;
}

std::span<const input_group> input_groups()
{
    return groups;
}

} // namespace qz::desk
