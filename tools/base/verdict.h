// What standard error is told of a container.
#pragma once

#include <cstdint>
#include <string>

#include "desk/base/bytes.h"
#include "desk/tuning/container.h"

namespace qz::tool {

// The library's, whose log of what it limits is shown only where all of its log is.
uint32_t quiet_verdict(desk::byte_view container);

// Whether the library takes the container; prints its status where it does not.
bool print_verdict(const std::string &name, desk::byte_view container);

void print_problem(const std::string &name, const desk::tuning_problem &problem);

} // namespace qz::tool
