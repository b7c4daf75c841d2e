// What a parse logs of records that claim more rows than they hold: of very many, the first and a number.
#pragma once

#include <cstdint>

namespace qz {

class row_count_log {
  public:
    void add(uint16_t record_id, int64_t claimed, uint32_t fitting);
    // Tells how many were not logged one by one, if any.
    void finish() const;

  private:
    static constexpr uint32_t most_lines = 16;
    uint32_t limited_ = 0; // records so far
};

} // namespace qz
