// The contents of a file as a flat list of values, each at its place.
#pragma once

#include <string>
#include <vector>

namespace qz::desk {

struct placed_value {
    std::string field; // "param", "exposure.analog_gain"
    std::string index; // "[2][0]", or empty
    std::string value; // as JSON writes it
};

// A block of a frame, a tuning record, or a group of a scene's inputs; no two of a file have the same name.
struct file_part {
    std::string name;
    std::vector<placed_value> values;
    std::string title = {}; // that the file itself gives the part, or empty
};

} // namespace qz::desk
