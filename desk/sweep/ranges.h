// The values that a sweep gives to inputs of its frame and to values of the tuning: the product of ranges, the first
// one slowest.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "desk/base/bytes.h"
#include "desk/base/named_value.h"
#include "desk/scene/scene.h"

namespace qz::desk {

struct sweep_range {
    named_value varied;
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
    // options: "NAME=FIRST..LAST:STEP", "NAME=FIRST..LAST*FACTOR" or "NAME=VALUE,VALUE". What they vary is set in place
    // and must stay where it is. Fails at others.
    sweep_ranges(const std::vector<std::string> &options, frame_inputs &inputs, byte_buffer &container);

    uint64_t rows() const { return rows_; }
    const std::vector<sweep_range> &ranges() const { return ranges_; }

    bool vary_tuning() const { return vary_tuning_; }

    // Sets the values of a row.
    void apply(uint64_t row) const;

  private:
    std::vector<sweep_range> ranges_;
    uint64_t rows_ = 1;
    bool vary_tuning_ = false;
};

} // namespace qz::desk
