// Files tuning records in the slots of a tuning set.
#pragma once

#include <cstdint>

#include "qz_isp/tuning.h"
#include "tuning/record_kinds.h"

namespace qz {

// Makes a private copy of the record of @p size bytes at @p source (header included; at least 8) and files it as its
// kind says, freeing the record that the slot held. Returns 0, 4 when the copy cannot be allocated, 8 for an unknown
// record.
uint32_t store_record(const void *source, uint32_t size, record_kind kind, isp_tuning_set &set);

} // namespace qz
