// Counts the library's allocations and lets chosen ones fail.
#pragma once

#include <cstddef>

namespace faults {

inline constexpr long never = -1;

// Allocation number n (0 = the next one) fails, once; with never, none does. Restarts the count.
void fail_allocation(long n);

// As fail_allocation(), for allocation n and every later one.
void fail_from(long n);

// Allocations asked for since the last call of fail_allocation() or fail_from(), failed ones included.
long allocations();

// Blocks allocated and not yet freed by the library.
long live_blocks();

} // namespace faults
