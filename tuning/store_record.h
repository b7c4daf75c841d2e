// Files tuning records in the slots of a tuning set.
#pragma once

#include <cstdint>

#include "qz_isp/tuning.h"
#include "tuning/record_kinds.h"
#include "tuning/row_count_log.h"

namespace qz {

// Makes a private copy of the record of @p size bytes at @p source (header included; at least 8) and files it as its
// kind says, freeing the record that the slot held. False when the copy cannot be allocated.
bool store_record(const void *source, uint32_t size, const record_kind &kind, isp_tuning_set &set, row_count_log &log);

} // namespace qz
