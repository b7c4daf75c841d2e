#include "desk/base/error.h"

namespace qz::desk {

std::string error_text(const error &what)
{
    std::string text = what.file ? *what.file + ": " : "";
    if (!what.place.empty())
        text += what.place + ": ";
    return what.expected.empty() ? text + what.found : text + "found " + what.found + ", expected " + what.expected;
}

void fail(const error &what)
{
#ifdef __cpp_exceptions
    throw what; // NOLINT(*-exception-escape): the way out
#else
    qz_isp_desk_failed(error_text(what).c_str());
#endif
}

} // namespace qz::desk
