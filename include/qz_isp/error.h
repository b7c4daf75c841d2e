/**
 * @file
 * Status codes. Every function that can fail returns one of them as an unsigned 32-bit value.
 */
#ifndef QZ_ISP_ERROR_H
#define QZ_ISP_ERROR_H

/** Status of a library call. */
enum isp_status {
    ISP_SUCCESS = 0,          /**< The call did what it says. */
    ISP_STEP_FAILED = 2,      /**< lu_decomposition() or lsc_polynomial_upscale_float() could not finish. */
    ISP_OUT_OF_MEMORY = 4,    /**< An allocation failed; what the call had made is freed. */
    ISP_INVALID_DATA = 8,     /**< A tuning container or statistics record is malformed. */
    ISP_INVALID_ARGUMENT = 32 /**< An argument is null or out of range; what was written then, the function says. */
};

#endif
