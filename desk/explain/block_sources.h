// What each block of a frame's record is made of.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace qz::tool {

// What has to be there or switched on for a block to be computed.
enum class gate : uint8_t {
    always,
    fixed,
    counter,
    noise_reduction,       // nr_mode 1 and above
    bayer_noise_reduction, // nr_mode 2 and above
    edges,                 // edge_mode 1 and above
    white_balance,
    colour,
    black_level,
    gamma,
    lens_shading,
};

enum class control : uint8_t { nr_strength, sharpness, fringe_sharpness, hue, saturation, tone };

// Factors of a strength at its ends; 1.0 at 0, linear between.
struct factor_rule {
    control by;
    double at_127;
    double at_minus_128;
    std::string_view meaning;
    int limit = 0; // of what a strength other than 0 gives; 0: none
};

// How a block comes about.
struct block_source {
    std::string_view block;
    std::string_view slot; // of the tuning set; empty: none
    gate needs;
    std::string_view inputs; // what goes in beside the record, or without one
    std::vector<factor_rule> factors = {};
    std::string_view reading = {}; // how values are taken from the record
};

// In record order.
std::span<const block_source> block_sources();

} // namespace qz::tool
