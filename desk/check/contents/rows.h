// The gain keys of a record's rows, and what stands in the columns between them.
#pragma once

#include <vector>

#include "desk/check/contents/record.h"

namespace qz::desk {

// The rows that gains find, by rising keys: of equal keys the first.
std::vector<size_t> rows_by_key(const checked_record &record);

// Keys out of order, equal, or beyond what gains there are.
void check_keys(const checked_record &record, const std::vector<size_t> &by_key, const reporter &report);

// Products that wrap, columns that turn back, and values that leap.
void check_columns(const checked_record &record, const std::vector<size_t> &by_key, const reporter &report);

// How far apart two values are by their sizes, in powers of two; one up on 0.
double octaves_between(int64_t a, int64_t b);

// Smaller differences are no leap, whatever stands around them.
constexpr int64_t least_leap = 16;

} // namespace qz::desk
