// Counts the library's allocations and lets chosen ones fail.
#pragma once

#include <cstddef>

namespace faults {

inline constexpr long never = -1;

// Allocation number n (0 = the next one) fails, once or with every later one; with never, none does. Restarts the
// count.
void fail_allocation(long n, bool later_too = false);

// Allocations asked for since the last call of fail_allocation(), failed ones included.
long allocations();

// Blocks allocated and not yet freed by the library.
long live_blocks();

} // namespace faults
