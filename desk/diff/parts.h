// The contents of a file as a flat list of values, each at its place.
#pragma once

#include <string>
#include <vector>

#include "record_layout.h"
#include "scene.h"
#include "tuning_container.h"

namespace qz::tool {

struct placed_value {
    std::string field; // "param", "exposure.analog_gain"
    std::string index; // "[2][0]", or empty
    std::string value; // as JSON writes it
};

// A block of a frame, a tuning record, or a group of a scene's inputs; no two of a file have the same name.
struct file_part {
    std::string name;
    std::vector<placed_value> values;
};

std::vector<file_part> record_parts(const std::vector<record_snapshot> &records);
std::vector<file_part> tuning_parts(const tuning_container &container);
std::vector<file_part> scene_parts(const scene &scene);

} // namespace qz::tool
