// What a frame's selection of tuning records goes by: the order of the sets, and the rules that take set indices.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

#include "qz_isp/tuning.h"
#include "qz_isp/tuning_layout.h"

namespace qz {

// The sets of one set index in the order in which they are asked for a record.
constexpr std::array<uint8_t, 3> set_order(uint32_t tuning_mode)
{
    switch (tuning_mode) {
    case 0: return {1, 2, 0};
    case 3: return {2, 1, 0};
    default: return {0, 1, 2};
    }
}

// The geometry that a kind of rule looks at, or null.
constexpr const isp_geometry *compared_geometry(uint16_t kind, const isp_geometry *frame, const isp_geometry *aux_size)
{
    return kind == 1 ? frame : kind == 2 ? aux_size : nullptr;
}

// Wraps as a signed 32-bit product.
constexpr int32_t area_of(const isp_geometry &geometry)
{
    return static_cast<int32_t>(static_cast<uint32_t>(geometry.width) * geometry.height);
}

// The ops that match, a bit for each. Looked up, not branched on: a container may have very many rules, in any order.
inline unsigned matching_ops(double area, double threshold)
{
    // Neither (no number), less, greater, equal.
    static constexpr uint8_t ops[] = {0, 1u << 2 | 1u << 4, 1u << 3 | 1u << 5, 1u << 1 | 1u << 4 | 1u << 5};
    return ops[(area <= threshold ? 1u : 0u) + (area >= threshold ? 2u : 0u)];
}

// All ops above 7 as one that never matches.
inline bool is_among(uint16_t op, unsigned ops)
{
    return (ops >> std::min<unsigned>(op, 8) & 1u) != 0;
}

inline bool matches(const isp_selection_rule &rule, double area)
{
    return is_among(rule.op, matching_ops(area, rule.threshold));
}

// With a single set index the rules have nothing to choose from.
constexpr bool has_rules(const isp_rule_ref &rules, int32_t set_count)
{
    return rules.record != nullptr && rules.first_rule != nullptr && set_count >= 2;
}

} // namespace qz
