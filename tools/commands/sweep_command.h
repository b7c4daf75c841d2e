// qz-isp sweep: a frame over ranges of its inputs, one row a frame.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "desk/sweep/plan.h"
#include "tools/base/inputs.h"

namespace qz::tool {

struct sweep_options {
    input_files inputs;
    desk::sweep_choice choice;
    std::string format = "csv"; // or "jsonl"
    bool no_header = false;
    std::string output = "-";
    std::optional<uint32_t> jobs; // threads; else as many as there are processors
};
int sweep(const sweep_options &options);

} // namespace qz::tool
