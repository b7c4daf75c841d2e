// The records of a saved makernote as parts to compare.
#pragma once

#include <vector>

#include "desk/diff/parts.h"
#include "desk/makernote/file.h"

namespace qz::desk {

std::vector<file_part> makernote_parts(const saved_makernote &makernote);

} // namespace qz::desk
