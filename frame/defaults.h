// Contents of the driver-filled blocks that do not depend on the frame, and of those whose tuning record is missing.
// Long lists stand 16 values a line.
#pragma once

#include "qz_isp/aic_record.h"

namespace qz::defaults {

// clang-format off

inline constexpr aic_long_5 long_5 = {
    .curve_a = {
     0, 0, 92, 38, 77, 30, 62, 24, 0, 0, 147, 92, 123, 77, 99, 62,
     92, 38, 92, 38, 77, 30, 62, 24, 147, 92, 147, 92, 123, 77, 99, 62,
     77, 30, 77, 30, 77, 30, 62, 24, 123, 77, 123, 77, 123, 77, 99, 62,
     62, 24, 62, 24, 62, 24, 30, 12, 0, 0, 0, 0, 0, 0, 0, 0,
    },
    .curve_b = {
     0, 0, 5, 2, 3, 2, 2, 1, 0, 0, 6, 5, 4, 3, 2, 2,
     5, 2, 5, 2, 3, 2, 1, 0, 6, 5, 6, 5, 4, 3, 1, 1,
     3, 2, 3, 2, 3, 2, 0, 0, 4, 3, 4, 3, 4, 3, 1, 0,
     2, 1, 1, 0, 0, 0, 0, 0, 2, 2, 1, 1, 1, 0, 0, 0,
    },
    .param = {
     4095, 5733, 409, 3685, 1294, 4095, 819, 819, 8191, 1024, 8191, 0, 2047, 0, 0, 4096,
     8191,
    },
};

inline constexpr aic_long_6 long_6 = {
    .param = {
     0, 0, 0, 26, 56, 128, 216, 462, 626, 932, 1108, 1480, 1564, 1824, 1896, 2368,
     3428, 4560, 384, 320, 320, 264, 248, 240, 224, 192, 192, 160, 160, 160, 136, 130,
     96, 80, 236, 328, 470, 774, 964, 1486, 2294, 3244, 4844, 6524, 6524, 6524, 6524, 6524,
     6524, 8064, 7680, 7168, 6144, 5120, 3840, 2560, 2304, 1984, 1792, 1792, 1792, 1792, 1792, 1792,
     1792, 2936, 3354, 3943, 4896, 5230, 5682, 5996, 7299, 7299, 7299, 7299, 7299, 7299, 7299, 7299,
     8191, 7680, 7168, 6144, 5120, 4608, 4224, 4032, 4032, 4032, 4032, 4032, 4032, 4032, 4032, 4032,
     18, 19, 20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 20, 2560,
     7168, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 8188, 0,
     7013, 7013, 7013, 7013, 7013, 7013, 7013, 7013, 7013, 7013, 7013, 7013, 7013, 7013, 8191, 8191,
     8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 6048, 7828,
     0, 3, 1072, 7000, 8000, 8000, 8000, 8000, 8000, 8000, 8000, 8000, 8000, 8000, 8000, 8000,
     8000, 2560, 3072, 5120, 5120, 5120, 5120, 5120, 5120, 5120, 5120, 5120, 5120, 5120, 5120, 5120,
     5120, 624, 3224, 3392, 7424, 7424, 7424, 7424, 7424, 7424, 7424, 7424, 7424, 7424, 7424, 7424,
     3584, 4608, 5120, 6144, 6144, 6144, 6144, 6144, 6144, 6144, 6144, 6144, 6144, 6144, 6144, 6144,
     745, 2896, 3720, 6535, 7696, 8040, 8040, 8040, 8040, 8040, 8040, 8040, 8040, 8040, 8040, 3584,
     4608, 6144, 7168, 7936, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 4848,
     4984, 5872, 6000, 6517, 6960, 7944, 8088, 8161, 8161, 8161, 8161, 8161, 8161, 8161, 3072, 4104,
     4608, 5120, 6144, 7168, 7680, 8128, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 8191, 2252, 2251,
     2250, 2, 3, 3, 1, 127, 2047,
    },
};

inline constexpr aic_long_7 long_7 = {
    .param = {
     5489, 6554, 0, 0, 8191, 128, 0, 8191, 1229, 1, 16, 20, 819, 1, 0, 0,
     0, 0, 2, 6144, 2048, 2048, 6144, 1475, 1475, 1475, 1475, 0, 160, 576, 1248, 2176,
     3328, 4736, 6336, 8191, 0, 920, 1874, 2880, 3922, 4967, 6042, 7102, 8191, 4608, 3308, 2757,
     2417, 2186, 8033, 7473, 7020, 2, 2, 2, 2, 2, 0, 0, 0, 6144,
    },
};

inline constexpr aic_long_13 long_13 = {.param = {7, 7, 7, 2, 7, 2}};

inline constexpr aic_long_11 long_11 = {
    .param = {4096, 4096, 4096, 4096, 4096, 4096, 1638, 3277, 4915, 6554, 4096, 4096, 1638, 3277},
};

inline constexpr aic_long_12 long_12 = {
    .param = {
     45, 64, 1, 16, 60, 30, 16, 1, 2, 0, 32, 128, 20, 20, 24, 24,
     2, 0, 128, 8, 1024, 1024, 128, 128, 0, 1, 0, 0, 7, 157, 1, 24,
     96, 172, 1, 3, 8, 0, 256, 656, 2456, 3272, 4095, 4, 160, 0, 0, 0,
     0, 9, 510, 511, 511, 218, 308, 11, 0, 247, 298, 342, 448, 14, 4, 0,
     1, 46, 58, 26, 45, 81, 500, 39, 7, 0, 1, 47, 63, 50, 86, 142,
     189, 224, 255, 713, 278, 295, 286, 0u - 1, 1, 101, 162, 216, 255, 100, 141, 25,
     0,
    },
};

// BT.601 full range, 13 fractional bits, rounded to nearest: rows Y, U, V.
inline constexpr aic_colour_matrix rgb_to_yuv = {
    .frac_bits = 13,
    .coeff = {2449, 4809, 934, -1382, -2714, 4096, 4096, -3430, -666},
};

// Values 3 to 5 come from tuning. The first three values sum to 65536, each group of seven to zero.
inline constexpr aic_rec_16 rec_16 = {
    .value = {25559, 32768, 7209, 65024, 512, 65024,
              0u - 579, 0u - 3232, 0u - 7680, 22982, 0u - 7680, 0u - 3232, 0u - 579,
              1027, 0, 0u - 9219, 16384, 0u - 9219, 1027, 0},
};

// clang-format on

inline constexpr aic_white_balance white_balance = {.shift = 2, .gain = {16384, 16384, 16384, 16384}};
inline constexpr uint32_t defect_pixel[2] = {8192, 4096};
inline constexpr uint32_t long_3[3] = {0, 32, 0};
inline constexpr aic_params_3 temporal_noise_reduction = {{32768, 32, 32}};
inline constexpr aic_params_3 temporal_noise_reduction_off = {{65535, 0, 0}};
inline constexpr aic_rec_3 rec_3 = {{5461, 8191, 0}};
inline constexpr aic_y_edge_enhancement y_edge_enhancement = {{1000, 1000, 1000, 1000}};
inline constexpr aic_y_edge_enhancement y_edge_enhancement_off = {};
inline constexpr aic_chroma_nr chroma_nr = {{0, 0, 100, 100, 100, 50, 50, 50}};
inline constexpr aic_chroma_nr chroma_nr_off = {{0, 0, 8191, 8191, 8191, 8191, 8191, 8191}};
inline constexpr aic_ctc ctc = {
    .mantissa = {4096, 4096, 4096, 4096, 4096, 4096}, .shift = 1, .value = {1024, 2048, 6144, 7168}};
inline constexpr aic_params_3 edge_enhancement = {{8192, 256, 2048}};
inline constexpr aic_params_3 edge_enhancement_off = {};
inline constexpr aic_noise_reduction noise_reduction = {{14336, 14336, 512, 128, 128}};
inline constexpr aic_noise_reduction noise_reduction_off = {};
inline constexpr aic_half_words_2 block_21 = {{19000, 19000}};
inline constexpr aic_bytes_2 block_22 = {{0, 255}};
inline constexpr aic_params_3 block_23 = {{0, 128, 128}};

// The unused byte is written only by the switched-off form.
inline constexpr aic_fringe_control fringe_control = {.exponent = 1,
                                                      .unused = 0,
                                                      .field_0_to_3 = {},
                                                      .field_4_to_7 = {4096, 4096, 4096, 4096},
                                                      .field_8_to_9 = {8191, 8191},
                                                      .field_10_to_11 = {-8192, -8192}};
inline constexpr aic_fringe_control fringe_control_off = {.exponent = 0,
                                                          .unused = 0,
                                                          .field_0_to_3 = {},
                                                          .field_4_to_7 = {},
                                                          .field_8_to_9 = {8191, 8191},
                                                          .field_10_to_11 = {-8192, -8192}};

// Unity in Q13 less the shift of 1: 4096 = 1.0.
inline constexpr int16_t macc_sector[4] = {4096, 0, 0, 4096};
inline constexpr uint8_t macc_shift = 1;

} // namespace qz::defaults
