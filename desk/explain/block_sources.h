// What each block of a frame's record is made of.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string_view>

#include "desk/explain/block_notes.h"
#include "desk/explain/origin.h"
#include "noise_detail/strength.h"

namespace qz::desk {

// What has to be there or switched on for a block to be computed.
enum class gate : uint8_t {
    always,
    fixed,
    counter,
    noise_reduction,
    bayer_noise_reduction,
    edges,
    white_balance,
    colour,
    black_level,
    gamma,
    lens_shading,
};

enum class control : uint8_t { none, nr_strength, sharpness, fringe_sharpness, hue, saturation, brightness, contrast };

// A manual control that acts on a block.
struct control_rule {
    control by = control::none;
    std::string_view meaning = {}; // of its amount
    strength_rule strength = {};   // of nr_strength and sharpness
};

// How a block comes about.
struct block_source {
    std::string_view block;
    gate needs;
    tuning_slot slot = tuning_slot::none;
    std::string_view inputs = {};  // what goes in beside the record, or without one
    std::string_view reading = {}; // how values are taken from the record
    std::array<control_rule, 2> controls = {};
    note_writer note = nullptr;         // tells what only some frames have
    origin without_rows = origin::kept; // of a record without rows
    uint8_t channel = 0;                // of gamma blocks
};

// One for each block, in record order.
std::span<const block_source> block_sources();

} // namespace qz::desk
