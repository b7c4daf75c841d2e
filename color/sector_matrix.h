// The 2x2 matrices of the sixteen sectors of multi-axis colour correction.
#pragma once

#include <cstdint>

namespace qz {

inline constexpr int sector_count = 16;

// Row by row, Q13: 8192 = 1.0; as in isp_macc_entry.
using fixed_sector = int16_t[4];

struct fixed_sectors {
    fixed_sector sector[sector_count];
};

struct sector_matrix {
    float m0, m1, m2, m3;
};

constexpr sector_matrix to_float(const fixed_sector &s)
{
    constexpr float one = 8192.0f;
    return {static_cast<float>(s[0]) / one, static_cast<float>(s[1]) / one, static_cast<float>(s[2]) / one,
            static_cast<float>(s[3]) / one};
}

constexpr sector_matrix operator*(const sector_matrix &t, const sector_matrix &m)
{
    return {t.m0 * m.m0 + t.m1 * m.m2, t.m0 * m.m1 + t.m1 * m.m3, //
            t.m2 * m.m0 + t.m3 * m.m2, t.m2 * m.m1 + t.m3 * m.m3};
}

} // namespace qz
