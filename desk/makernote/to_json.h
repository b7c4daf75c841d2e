// A saved makernote as the text of JSON.
#pragma once

#include <string>

#include "desk/makernote/file.h"

namespace qz::desk {

std::string makernote_json(const saved_makernote &makernote);

} // namespace qz::desk
