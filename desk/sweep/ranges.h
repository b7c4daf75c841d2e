// The values that a sweep gives to the inputs of its frame: the product of ranges, the first one slowest.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "desk/scene/named_input.h"
#include "desk/scene/scene.h"

namespace qz::desk {

struct sweep_range {
    named_input input;
    std::vector<double> list; // the values; where there are none: count values from first on
    double first;
    double last;
    double stride; // what is added, or multiplied by; taken away, or divided by, where the last value is the lower one
    bool multiplies;
    uint64_t count;

    double value(uint64_t place) const;
};

class sweep_ranges {
  public:
    // options: "NAME=FIRST..LAST:STEP", "NAME=FIRST..LAST*FACTOR" or "NAME=VALUE,VALUE". The inputs are set in place
    // and must stay where they are. Fails at others.
    sweep_ranges(const std::vector<std::string> &options, frame_inputs &inputs);

    uint64_t rows() const { return rows_; }
    const std::vector<sweep_range> &ranges() const { return ranges_; }

    // Sets the inputs of a row.
    void apply(uint64_t row) const;

  private:
    std::vector<sweep_range> ranges_;
    uint64_t rows_ = 1;
};

} // namespace qz::desk
