// What the program shows of the library's log.
#pragma once

namespace qz::tool {

enum class log_shown { nothing, errors, everything };

// For the rest of the program; errors where it is not called.
void show_log(log_shown shown);

} // namespace qz::tool
