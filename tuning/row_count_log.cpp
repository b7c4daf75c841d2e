#include "tuning/row_count_log.h"

#include "qz_log.h"

namespace qz {

void row_count_log::add(uint16_t record_id, int64_t claimed, uint32_t fitting)
{
    if (limited_++ < most_lines)
        qz_log(QZ_LOG_ERROR, "tuning record %u: %lld rows claimed, %u fit", static_cast<unsigned>(record_id),
               static_cast<long long>(claimed), static_cast<unsigned>(fitting));
}

void row_count_log::finish() const
{
    if (limited_ > most_lines)
        qz_log(QZ_LOG_ERROR, "tuning: %u more records claim more rows than fit",
               static_cast<unsigned>(limited_ - most_lines));
}

} // namespace qz
