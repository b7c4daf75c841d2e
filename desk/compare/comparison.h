// What differs between the records that two tunings give, where, and from which tuning records.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "desk/compare/side.h"
#include "desk/compare/tally.h"

namespace qz::desk {

// Where a block's values in one run came from, on both sides.
struct side_origin {
    uint32_t gain; // of the frame, 256 = unity
    block_origin block;
};
struct pair_origin {
    side_origin old_side;
    side_origin new_side;
};

struct comparison {
    std::string old_name;
    std::string new_name;
    bool same_tunings; // their containers, after what settings and changes do; values in ranges apart
    uint64_t runs;
    bool of_rows; // else of frames
    uint64_t differing_runs;
    std::vector<differing_list> lists;
    std::map<uint64_t, run_place> places;                                     // of the runs that are told
    std::map<std::pair<uint64_t, const block_layout *>, pair_origin> origins; // of a run and a block

    bool is_same() const { return lists.empty(); }
    // Null for values that no block makes.
    const pair_origin *origin_of(const differing_list &list, const occurrence &where) const;
};

// Runs again what is told: of every value its first and its largest difference, or those of each list only.
comparison describe(const difference_tally &tally, compared_side &old_side, compared_side &new_side, bool every_value);

// Everything, as the text of JSON.
std::string comparison_json(const comparison &made);

} // namespace qz::desk
