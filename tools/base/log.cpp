#include "tools/base/log.h"

#include <cstdarg>
#include <cstdio>

#include "qz_log.h"

namespace qz::tool {

namespace {

log_shown chosen = log_shown::errors;

} // namespace

void show_log(log_shown shown)
{
    chosen = shown;
}

quiet_log::quiet_log() : before_(chosen)
{
    if (chosen == log_shown::errors)
        chosen = log_shown::nothing;
}

quiet_log::~quiet_log()
{
    chosen = before_;
}

} // namespace qz::tool

// Takes the place of the log library's: the library logs its version for every context.
void qz_log(int level, const char *format, ...)
{
    using qz::tool::log_shown;
    if (qz::tool::chosen < (level == QZ_LOG_ERROR ? log_shown::errors : log_shown::everything))
        return;
    va_list arguments;
    va_start(arguments, format);
    std::fprintf(stderr, "qz[%d] ", level);
    std::vfprintf(stderr, format, arguments);
    std::fputc('\n', stderr);
    va_end(arguments);
}
