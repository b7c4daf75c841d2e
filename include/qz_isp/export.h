/* How the library's functions are exported: C linkage, visible outside the shared library. */
#ifndef QZ_ISP_EXPORT_H
#define QZ_ISP_EXPORT_H

#ifdef __cplusplus
#define QZ_ISP_EXTERN_C extern "C"
#else
#define QZ_ISP_EXTERN_C extern
#endif

#if defined(__GNUC__)
#define QZ_ISP_API QZ_ISP_EXTERN_C __attribute__((visibility("default")))
#else
#define QZ_ISP_API QZ_ISP_EXTERN_C
#endif

#endif
