/**
 * @file
 * Context and lifecycle: one context per camera, used by one thread at a time.
 */
#ifndef QZ_ISP_CONTEXT_H
#define QZ_ISP_CONTEXT_H

#include <stdint.h>

#include "qz_isp/aic_record.h"
#include "qz_isp/blob.h"
#include "qz_isp/export.h"
#include "qz_isp/statistics.h"
#include "qz_isp/tuning.h"

struct qz_mkn;

/**
 * State of one camera: this header, followed in the same allocation by the characterisation copy, the statistics grids,
 * the makernote key and the AIC output record.
 */
typedef struct isp_context {
    isp_tuning_set *tuning_sets[3]; /**< Arrays of set 0, 1 and 2, set_count sets each, in one block. */
    isp_cmc *cmc;                   /**< Characterisation copy. */
    rgbs_grid_desc *rgbs_grid;      /**< Channel averages of the last statistics. */
    af_grid_desc *af_grid;          /**< Filter responses of the last statistics. */
    aic_record *aic_output;         /**< Parameters of the last frame. */
    struct qz_mkn *makernote;       /**< The caller's makernote, or null. */
    char *mkn_key;                  /**< 16 characters and a terminator: key of the version record. */
    isp_rule_ref rules;             /**< Selection rules inside the caller's container. */
    uint32_t frame_counter;         /**< Frames run. */
    int32_t set_count;              /**< Set indices parsed. */
    uint32_t grid_capacity;         /**< Cells that the statistics grids have room for. */
} isp_context;

/**
 * Creates a context.
 *
 * Logs the version, copies the characterisation record, appends the version record to the makernote and parses the
 * container.
 *
 * @param container   tuning container; its bytes must outlive the context and stay as they are
 * @param grid_width  width in cells of the largest statistics grid to convert
 * @param grid_height its height
 * @param cmc         camera-module characterisation, or null; need not outlive the call
 * @param makernote   makernote to append to, or null; must outlive the context
 * @return the context, to be released with qz_isp_2_7_deinit(); null when memory runs out or the container is invalid
 */
QZ_ISP_API isp_context *qz_isp_2_7_init(const isp_blob *container, uint32_t grid_width, uint32_t grid_height,
                                        const isp_cmc *cmc, struct qz_mkn *makernote);

/** Releases a context and everything it owns; accepts null. */
QZ_ISP_API void qz_isp_2_7_deinit(isp_context *context);

/** Size in bytes of the AIC output record: AIC_RECORD_SIZE. */
QZ_ISP_API uint32_t isp_get_aic_output_size_2_7(void);

#endif
