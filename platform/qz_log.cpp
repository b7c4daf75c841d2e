#include "qz_log.h"

#include <algorithm>

#include <stdarg.h>
#include <stdio.h>

#ifdef __ANDROID__
#include <android/log.h>

void qz_log(int level, const char *format, ...)
{
    va_list arguments;
    va_start(arguments, format);
    __android_log_vprint(level == QZ_LOG_ERROR ? ANDROID_LOG_ERROR : ANDROID_LOG_INFO, "qz_isp", format, arguments);
    va_end(arguments);
}

#else

void qz_log(int level, const char *format, ...)
{
    // One write, so that lines of several threads do not mix; a longer text is cut.
    char line[1024];
    int length = snprintf(line, sizeof line, "qz[%d] ", level);

    va_list arguments;
    va_start(arguments, format);
    const int text = vsnprintf(line + length, sizeof line - static_cast<size_t>(length) - 1, format, arguments);
    va_end(arguments);

    length = std::min(length + std::max(text, 0), static_cast<int>(sizeof line) - 2);
    line[length++] = '\n';
    fwrite(line, 1, static_cast<size_t>(length), stderr);
}

#endif
