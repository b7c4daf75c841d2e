// Fixed tables of the five multi-axis colour effects. Q13: 8192 = 1.0.
#pragma once

#include <algorithm>
#include <array>
#include <initializer_list>

#include "color/effects.h"
#include "color/sector_matrix.h"

namespace qz {

struct numbered_sector {
    int number;
    fixed_sector matrix;
};

// Sectors that are not listed are identity.
constexpr fixed_sectors sectors_with(std::initializer_list<numbered_sector> listed)
{
    fixed_sectors all = {};
    for (fixed_sector &each : all.sector)
        each[0] = each[3] = 8192;
    for (const numbered_sector &each : listed)
        std::copy_n(each.matrix, 4, all.sector[each.number]);
    return all;
}

// By number of the effect.
inline constexpr std::array<fixed_sectors, macc_effects> macc_effect_tables = {
    // macc_1
    sectors_with({
        {0, {9728, -3072, 0, 8192}},
        {12, {9728, 0, -3072, 8192}},
        {13, {12800, 1536, -3072, 8192}},
        {14, {11264, 0, 0, 11264}},
        {15, {9728, -3072, 0, 11264}},
    }),
    // macc_2
    sectors_with({
        {7, {10240, 4096, 0, 8192}},
        {8, {10240, 4096, 0, 12288}},
        {9, {12288, 0, 0, 12288}},
        {10, {14336, -2048, 4096, 8192}},
        {11, {10240, 0, 4096, 8192}},
    }),
    // macc_3
    sectors_with({
        {4, {7168, 0, 2048, 8192}},
        {5, {5120, -1024, 2048, 8192}},
        {6, {8192, 2048, -1024, 5120}},
        {7, {8192, 2048, 0, 7168}},
    }),
    // macc_4
    sectors_with({
        {4, {5120, 0, 6144, 8192}},
        {5, {3072, -1024, 2048, 6144}},
        {6, {6144, 2048, -1024, 3072}},
        {7, {8192, 6144, 0, 5120}},
    }),
    // macc_5
    sectors_with({
        {4, {4096, 0, 8192, 8192}},
        {5, {0, -2048, 4096, 6144}},
        {6, {6144, 4096, -2048, 0}},
        {7, {8192, 8192, 0, 4096}},
    }),
};

} // namespace qz
