// A scene: the sensor's characterisation, the statistics grid and the inputs of its frames.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "desk/base/bytes.h"
#include "qz_isp/context.h"
#include "qz_isp/frame.h"

namespace qz::desk {

// A list of numbers that may be missing altogether.
using curve = std::optional<std::vector<float>>;

struct gamma_inputs {
    std::array<curve, 3> curves;
    uint32_t point_count;
};

struct shading_inputs {
    std::array<curve, 4> grids;
    uint16_t width;
    uint16_t height;
    uint8_t enable;
};

// Inputs of one frame, holding what isp_input_params points to.
struct frame_inputs {
    std::string name;
    isp_input_params controls; // its pointers are null
    std::optional<isp_frame_desc> frame;
    std::optional<isp_exposure> exposure;
    std::optional<isp_scene_params> scene;
    std::optional<gamma_inputs> gamma;
    std::optional<isp_colour_params> colour;
    std::optional<shading_inputs> lsc;
    std::optional<isp_geometry> aux_size;
    std::optional<std::vector<uint32_t>> selection_list; // ends with 0
};

struct characterisation {
    std::optional<isp_sensor_description> sensor_description;
    std::optional<std::vector<std::array<uint32_t, 4>>> entries;
};

struct scene {
    uint32_t grid_width;
    uint32_t grid_height;
    std::optional<characterisation> cmc;
    std::vector<frame_inputs> frames;
};

// What the library is handed of an input: null where there is none.
template <typename Record>
const Record *address_of(const std::optional<Record> &record)
{
    return record ? &*record : nullptr;
}

scene read_scene(const std::string &file, std::string_view text);

} // namespace qz::desk
