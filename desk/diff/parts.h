// The contents of a file as a flat list of values, each at its place.
#pragma once

#include <string>
#include <vector>

#include "desk/base/bytes.h"

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

    // Of a part among millions: its values are made only where its bytes are not those of the other file's part.
    byte_view bytes = {};
    std::vector<placed_value> (*values_of)(byte_view bytes) = nullptr;
};

} // namespace qz::desk
