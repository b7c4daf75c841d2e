/**
 * @file
 * The whole interface of the library.
 */
#ifndef QZ_ISP_QZ_ISP_H
#define QZ_ISP_QZ_ISP_H

#include "qz_isp/aic_record.h"
#include "qz_isp/bicubic.h"
#include "qz_isp/blob.h"
#include "qz_isp/checksum.h"
#include "qz_isp/color.h"
#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_isp/frame.h"
#include "qz_isp/gain.h"
#include "qz_isp/makernote_records.h"
#include "qz_isp/matrix.h"
#include "qz_isp/nearest.h"
#include "qz_isp/noise_detail.h"
#include "qz_isp/polynomial.h"
#include "qz_isp/statistics.h"
#include "qz_isp/table_resize.h"
#include "qz_isp/tuning.h"
#include "qz_isp/tuning_layout.h"

#endif
