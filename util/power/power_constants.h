// Constants of the powers.
//
// A base is x = 2^k z. z begins at 0.69921875 and ends before twice that; the four bits behind its exponent, counted
// from the beginning, tell its interval.
#pragma once

#include <cstdint>

namespace qz::power_constants {

inline constexpr uint32_t first_z = 0x3f330000; // bits of the float 0.69921875

// Near 1 / z, in at most 13 bits: z * inverse - 1 is exact in double and at most 0.0298 in magnitude. 1 in the interval
// around 1, so that logarithms next to 0 keep their precision.
alignas(64) inline constexpr double inverses[16] = {
    0x1.662p+0, 0x1.572p+0, 0x1.495p+0, 0x1.3cap+0, 0x1.30dp+0, 0x1.25ep+0, 0x1.1bbp+0, 0x1.123p+0,
    0x1.095p+0, 0x1.000p+0, 0x1.e58p-1, 0x1.ca4p-1, 0x1.b20p-1, 0x1.9c2p-1, 0x1.886p-1, 0x1.768p-1};

// -log2(inverse) to the nearest double, and what that leaves to the nearest double.
alignas(64) inline constexpr double logs[16] = {
    -0x1.eff16e557a91dp-2, -0x1.b0bb8bf4af1a8p-2, -0x1.740871deb8e15p-2, -0x1.39fd9259eebbdp-2, -0x1.01d228cf4071ap-2,
    -0x1.97ac270c8f462p-3, -0x1.2f6ddde311e73p-3, -0x1.9594f001c4a9ap-4, -0x1.a649bfe7f2265p-5, 0x0.0p+0,
    0x1.3a0cf56a06c4bp-4,  0x1.47b2c2f8cb155p-3,  0x1.e857d3d361368p-3,  0x1.409347a934e48p-2,  0x1.891fe20affb86p-2,
    0x1.ce01a12f5d8d1p-2};
inline constexpr double logs_low[16] = {0x1.dbc67056da6dep-59,  0x1.d46164294ca36p-56,
                                        0x1.bef4c1bdac86dp-60,  0x1.016ed14c6b1bdp-56,
                                        -0x1.72c813e541bcdp-56, -0x1.5cd56226762e7p-59,
                                        -0x1.36cb5b80f43ccp-58, 0x1.49d3ef677cfffp-58,
                                        -0x1.9d8e823a7c0d2p-59, 0x0.0p+0,
                                        -0x1.6f2c586eb19d7p-58, 0x1.b280fb0510c77p-57,
                                        -0x1.086fce864a1f6p-57, -0x1.1e317a17bfaedp-57,
                                        -0x1.17ec0a0389dfep-57, 0x1.f5fdec0d3c209p-58};

// Coefficients in rising powers, made with Sollya: prec = 300;
// fpminimax(log2(1 + x) / x, 6, [|D...|], [-0.0308; 0.0308], absolute)
// x times the series is at most 2^-48 off log2(1 + x).
inline constexpr double log_series[7] = {0x1.71547652b82f5p0,   -0x1.71547652dd452p-1, 0x1.ec709dc48b463p-2,
                                         -0x1.71546cc7f4afap-2, 0x1.2776b55162f7fp-2,  -0x1.ed0dbb41feb62p-3,
                                         0x1.a6cae9229e066p-3};

// fpminimax(2^x, 9, [|1, D...|], [-0.5; 0.5], relative)
// At most 2^-45 of 2^x off.
inline constexpr double exp_series[10] = {0x1p0,
                                          0x1.62e42fefa36b3p-1,
                                          0x1.ebfbdff81b8b6p-3,
                                          0x1.c6b08d70f33e8p-5,
                                          0x1.3b2ab72480407p-7,
                                          0x1.5d87fd53fbbd7p-10,
                                          0x1.43089746fcccbp-13,
                                          0x1.ffcec5181317p-17,
                                          0x1.63e73e07c33fap-20,
                                          0x1.b364f245ffdc9p-24};

// 1 / ln 2 and ln 2, each as the nearest double and the nearest double to what that leaves.
inline constexpr double log2_of_e[2] = {0x1.71547652b82fep+0, 0x1.777d0ffda0d24p-56};
inline constexpr double log_of_2[2] = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};

} // namespace qz::power_constants
