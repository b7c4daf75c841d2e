// Where the values of a frame's record came from.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "desk/explain/selected_records.h"

namespace qz::desk {

enum class origin : uint8_t {
    tuning,   // a tuning record
    inputs,   // the frame's inputs alone
    fixed,    // the same in every frame
    context,  // the frames run before
    defaults, // instead of a record or an input that is missing
    off,      // what the block holds when its mode switches it off
    kept,     // as the frame before left it
    absent,   // the frame has no such block
};
std::string_view origin_name(origin source);

// The rows around the frame's gain; a value is (1 - weight) * lower + weight * upper, rounded.
struct row_origin {
    size_t count;
    size_t lower;
    size_t upper;
    int64_t lower_key;
    int64_t upper_key;
    double weight;
    std::vector<int32_t> values; // at the gain, before any control
};

// What a manual control did.
struct control_origin {
    std::string_view control;
    double value;
    double amount;
    std::string meaning; // of the amount: "factor of param[0]"
};

struct block_origin {
    origin source;
    std::string why = {}; // what is missing or switched off, which inputs went in, how the record was read
    std::optional<selected_record> record = {};
    std::optional<row_origin> rows = {};
    std::vector<control_origin> controls = {};

    // One more reason, behind or before the others.
    void add(std::string_view reason);
    void add_first(std::string_view reason);
};

struct frame_origin {
    std::string tuning; // what messages call it
    int32_t set_count;  // set indices it has
    uint32_t tuning_mode;
    std::array<uint8_t, 3> set_order; // of an index's sets: the first that holds a record gives it
    bool index_0_first;               // a selection list puts set index 0 before the rules' indices
    uint32_t gain;                    // 256 = unity, 16 bits
    std::string gain_why;             // where it is not the product of the frame's gains
    float saturation;
    std::vector<evaluated_rule> rules;
    std::vector<block_origin> blocks; // as in record_blocks()
};

} // namespace qz::desk
