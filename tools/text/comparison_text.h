// What two tunings give otherwise, for people.
#pragma once

#include <string>

#include "desk/compare/comparison.h"

namespace qz::tool {

// "frame 1 (night)", "row 17 (gain 2, sharpness 30)".
std::string place_text(const desk::run_place &place);

// all: every value; otherwise of every list the first and the largest difference.
std::string comparison_text(const desk::comparison &made, bool all);

} // namespace qz::tool
