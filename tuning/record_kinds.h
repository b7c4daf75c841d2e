// What the library knows of each kind of tuning record: its slot, where its payload starts and how its rows count.
#pragma once

#include <cstdint>

namespace qz {

// The 320 family has one numbering of record kinds, the 768 and 1536 families share another.
enum class record_family : uint8_t { f320, f768, f1536 };

enum class filing : uint8_t {
    unknown,        // not a record of its family
    dropped,        // accepted, not kept
    plain,          // record and, where the kind has one, payload
    fringe_control, // with what newer versions put behind the rows
    chroma_nr,      // payload in the group's first payload slot, the second null
    chroma_nr_alt,  // the other way round
    rec_13,         // held as a second copy of its own
};

enum class row_counter : uint8_t {
    none,
    u16_at_8,  // 320 family and macc
    i32_at_16, // 768 and 1536 families; negative means no rows
};

struct record_kind {
    filing how = filing::unknown;
    uint8_t slot = 0;       // first slot of the group
    uint8_t payload = 0;    // byte in the record where the payload starts; 0: the group has none
    uint8_t fixed_size = 8; // bytes that readers take for granted
    row_counter counter = row_counter::none;
    uint16_t row_size = 0; // bytes
};

// @p offset is the record id less the base of its group of 64.
record_kind kind_of(record_family family, uint32_t offset);

} // namespace qz
