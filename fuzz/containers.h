// Tuning containers out of arbitrary bytes.
#pragma once

#include <cstdint>
#include <span>

namespace fuzz {

// Makes a container that the library accepts, with as few changes as possible: the tag, the sizes of records that do
// not fit their list, and ids that no slot takes. A valid container without unknown records stays as it is.
void repair(std::span<uint8_t> container);

} // namespace fuzz
