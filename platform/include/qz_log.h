/**
 * @file
 * Logging library: formatted log output.
 */
#ifndef QZ_LOG_H
#define QZ_LOG_H

#ifdef __cplusplus
extern "C" {
#endif

/** Exported, with a printf format as its second parameter. */
#if defined(__GNUC__)
#define QZ_LOG_PRINTF __attribute__((visibility("default"), format(printf, 2, 3)))
#else
#define QZ_LOG_PRINTF
#endif

/** Log levels that the ISP library uses. */
enum qz_log_level {
    QZ_LOG_ERROR = 0, /**< Something could not be done as asked. */
    QZ_LOG_INFO = 1   /**< Something worth knowing, such as a version. */
};

/**
 * Writes one line of printf-formatted text with its level: to standard error, on Android to the system log.
 *
 * @param level  see qz_log_level; other values are written as they are
 * @param format printf format, without a line end
 */
QZ_LOG_PRINTF void qz_log(int level, const char *format, ...);

#ifdef __cplusplus
}
#endif

#endif
