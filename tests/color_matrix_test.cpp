#include <array>
#include <limits>
#include <optional>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/color.h"
#include "tests/digest.h"

namespace {

using matrix = std::array<float, 9>;
using coefficients = std::array<int32_t, 9>;

TEST(set_cc_reg, folds_the_matrix_and_truncates)
{
    const coefficients of_identity = {255, 44, 47, 0, -169, -171, 0, -214, 148};
    const std::pair<cc_fixed_matrix, coefficients> cases[] = {
        {{1, {16384, -32768, 0, 0, 16384, 0, -32768, 0, 16384}}, of_identity}, // -32768 stands for 0
        {{0, {16384, 0, 0, 0, 16384, 0, 0, 0, 16384}}, {127, 22, 23, 0, -84, -85, 0, -107, 74}},
        {{7, {256}}, {}}, // nothing is written
    };
    for (const auto &[cc, expected] : cases) {
        uint32_t frac_bits = 0;
        coefficients out = {};
        set_cc_reg(&cc, &frac_bits, out.data());
        EXPECT_EQ(frac_bits, cc.shift > 6 ? 0u : 8u);
        EXPECT_EQ(out, expected) << cc.shift;
    }
}

TEST(set_yuv_to_rgb, takes_as_many_fraction_bits_as_fit)
{
    constexpr float infinity = std::numeric_limits<float>::infinity();
    struct {
        matrix m;
        uint32_t frac_bits;
        coefficients expected;
    } const cases[] = {
        {{1, 0, 0, 0, 1, 0, 0, 0, 1}, 12, {4096, -4096, 4096, 4096, 4096, 0, 4096, -4096, -4096}},
        {{1, 0, 1.13983f, 0, 0, 0, 1, 2.03211f}, 11, {4382, -4382, -286, 0, 0, 0, 6209, 2113, 2048}},
        {{0.99f}, 13, {8110, -8110, 8110}},
        {{70000.0f}, 0, {70000, -70000, 70000}},
        {{-infinity}, 0, {INT32_MIN, INT32_MAX, INT32_MIN}},
        {{0, infinity}, 0, {INT32_MAX, INT32_MAX, 0}}, // infinity x 0 is not a number
    };
    for (const auto &c : cases) {
        uint32_t frac_bits = 99;
        coefficients out = {};
        set_yuv_to_rgb(c.m.data(), nullptr, &frac_bits);
        set_yuv_to_rgb(nullptr, out.data(), &frac_bits);
        set_yuv_to_rgb(c.m.data(), out.data(), nullptr);
        EXPECT_EQ(frac_bits, 99u);
        EXPECT_EQ(out, coefficients{});
        set_yuv_to_rgb(c.m.data(), out.data(), &frac_bits);
        EXPECT_EQ(frac_bits, c.frac_bits) << c.m[0];
        EXPECT_EQ(out, c.expected) << c.m[0];
    }
}

TEST(saturation, scales_factors_and_boosts_matrices_by_its_low_byte)
{
    for (const auto &[saturation, expected] : {std::pair{-128, 0.0f}, {-64, 0.35f}, {0, 0.7f}, {127, 3.5f}}) {
        float factor = 0.7f;
        compute_saturation_factor(static_cast<int8_t>(saturation), &factor);
        EXPECT_EQ(factor, expected) << saturation;
    }
    matrix m = {0, 1, 0, 1.5f, -0.25f, -0.25f, 0, 1, 0};
    apply_manual_saturation_to_ccms(m.data(), 1, 1, 50, 1.0f);
    apply_manual_saturation_to_ccms(m.data(), 1, 0, 0x17f, 1.0f); // 127: a = 1.9921875
    EXPECT_EQ(std::vector(&m[3], &m[6]), (std::vector{1.6240234375f, -0.498046875f, -0.1259765625f}));
}

TEST(hue, turns_sectors_and_matrices)
{
    std::vector<float> sectors(64);
    for (size_t i = 0; i < 64; ++i)
        sectors[i] = std::array{1.0f, 2.0f, 3.0f, 4.5f}[i % 4];
    compute_hue(sectors.data(), -64); // a quarter turn
    for (size_t i = 0; i < 64; ++i)
        EXPECT_NEAR(sectors[i], (std::array{3.0f, 3.999f, -1.0f, -2.0f}[i % 4]), 1e-4f) << i;

    matrix m = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    apply_manual_hue_to_ccms(m.data(), 1, 1, -100);
    apply_manual_hue_to_ccms(m.data(), 1, 0, 64);
    EXPECT_NEAR(m[0], 0.7633f, 1e-4f); // 0.299 + 0.587 (cos + sin) + 0.114 (cos - sin)
}

TEST(colour_matrices, of_every_setting_to_the_bit)
{
    uint64_t digests[5] = {};
    const auto add = [](uint64_t &digest, const auto &values) {
        digest = test::digest(values.data(), values.size() * sizeof values[0], digest);
    };
    std::vector<float> sectors(64);
    for (size_t i = 0; i < 64; ++i)
        sectors[i] = static_cast<float>(i * i % 61) / 16.0f - 2.0f;
    std::vector<float> ccms(sectors.begin() + 10, sectors.begin() + 28);
    ccms.resize(45);
    for (int setting = -128; setting < 128; ++setting) {
        std::vector<float> turned = sectors, hued = ccms, saturated = ccms, replaced = sectors;
        compute_hue(turned.data(), static_cast<int8_t>(setting));
        add(digests[0], turned);
        apply_manual_hue_to_ccms(hued.data(), 2, 0, static_cast<int8_t>(setting));
        add(digests[1], hued);
        apply_manual_saturation_to_ccms(saturated.data(), 2, 0, setting, 1.1f);
        add(digests[2], saturated);
        apply_color_effects_to_ccms(replaced.data(), 2, static_cast<uint32_t>(setting + 128) << 4);
        add(digests[3], replaced);
        cc_fixed_matrix cc = {static_cast<uint16_t>((setting + 128) % 7), {}};
        for (int i = 0; i < 9; ++i)
            cc.coefficients[i] = static_cast<int16_t>((i + 3) * setting * 23);
        uint32_t frac_bits = 0;
        coefficients folded = {};
        set_cc_reg(&cc, &frac_bits, folded.data());
        add(digests[4], folded);
    }
    constexpr uint64_t expected[] = {0xfa9695ba2402be52u, 0xcaba489c5b38626cu, 0xf4ced49192f1dd7bu, 0x1d08d141919344c0u,
                                     0x8ea089f997835c76u};
    for (size_t i = 0; i < 5; ++i)
        EXPECT_EQ(digests[i], expected[i]) << i;
}

using sector = std::array<int16_t, 4>;

struct entry {
    uint16_t type, key;
    sector every; // the same matrix in all sectors
};

struct macc_case {
    const char *what;
    std::vector<entry> entries;
    uint32_t mode, target, effects;
    int hue;
    size_t sector_number;
    sector expected;
    std::optional<int> shift; // none: called without a place for it
};

TEST(macc, combines_base_effects_and_hue)
{
    constexpr sector one = {8192, 0, 0, 8192};
    constexpr sector unity = {4096, 0, 0, 4096};
    const std::vector<entry> bases = {{0, 2000, {2, 0, 0, 2}}, {0, 4000, {4, 0, 0, 4}}, {7, 5000, one},
                                      {0, 6000, {6, 0, 0, 6}}, {0, 0, {8, 0, 0, 8}},    {0, 0, one}};
    const sector least = {-32768, -32768, -32768, -32768}; // -4.0
    const std::vector<entry> extremes = {{0, 0, least}, {1, 0, least}, {2, 0, least}, {3, 0, least}, {4, 0, least}};
    const macc_case cases[] = {
        {"defaults", {}, 1, 0, 0, 0, 0, unity, 1},
        {"no shift", {}, 0, 0, 0, 0, 15, one, {}},
        {"table 1", {}, 0, 0, 0x1, 0, 14, {5632, 0, 0, 5632}, 1},
        {"table 2", {}, 0, 0, 0x2, 0, 10, {7168, -1024, 2048, 4096}, 1},
        {"table 5", {}, 0, 0, 0x10, 0, 6, {3072, 2048, -1024, 0}, 1},
        {"table 4 x table 3", {}, 0, 0, 0xc, 0, 5, {832, -704, 1408, 2944}, 1},
        {"tie: earlier", bases, 1, 5000, 0, 0, 3, {4, 0, 0, 4}, 0},
        {"nearest above all", bases, 1, 0xffffffff, 0, 0, 3, {6, 0, 0, 6}, 0},
        {"key 0", bases, 2, 5000, 0, 0, 3, {8, 0, 0, 8}, 0},
        {"no key 0", {{0, 1, {2, 0, 0, 2}}, {3, 0, {2, 0, 0, 2}}}, 0, 1, 0, 0, 3, unity, 1},
        {"replaced", {{3, 9, {1, 2, 3, 4}}, {3, 9, {5, 6, 7, 8}}}, 1, 0, 0x4, 0, 0, {5, 6, 7, 8}, 0},
        {"not replaced", {{4, 9, {1, 2, 3, 4}}, {5, 0, {1, 2, 3, 4}}}, 1, 0, 0x14, 0, 0, unity, 1},
        {"on the base", {{0, 0, {0, 8192, 4096, 0}}}, 0, 0, 0x2, 0, 10, {-512, 7168, 2048, 2048}, 1},
        {"wraps", {{0, 0, {16384, 0, 0, -32768}}}, 0, 0, 0x2, 0, 9, {24576, 0, 0, 16384}, {}},
        {"large", {{0, 0, {16384, 0, 0, -32768}}}, 0, 0, 0x2, 0, 9, {3072, 0, 0, -6144}, 3},
        {"scale runs out", extremes, 0, 0, 0xf, 0, 0, {}, 15},
        {"half a turn", {{0, 0, {8192, 0, 0, -32768}}}, 0, 0, 0, -128, 0, {-2047, 0, 0, 8189}, 2},
    };
    for (const macc_case &c : cases) {
        std::vector<uint16_t> words = {0, 0, 0, 0, static_cast<uint16_t>(c.entries.size())};
        for (const entry &e : c.entries) {
            words.insert(words.end(), {e.type, e.key});
            for (size_t i = 0; i < 64; ++i)
                words.push_back(static_cast<uint16_t>(e.every[i % 4]));
        }
        const isp_table_slot slot = {reinterpret_cast<isp_record *>(words.data()), words.data() + 5};
        std::vector<int16_t> coeffs(64, 99);
        uint8_t shift = 99;
        compute_macc(&slot, c.mode, c.target, c.effects, static_cast<int8_t>(c.hue), coeffs.data(),
                     c.shift ? &shift : nullptr);
        for (size_t i = 0; i < 4; ++i) // half a turn is not exact
            EXPECT_NEAR(coeffs[4 * c.sector_number + i], c.expected[i], c.hue != 0 ? 1 : 0) << c.what << " m" << i;
        EXPECT_EQ(shift, c.shift.value_or(99)) << c.what;
    }
    isp_record counted[] = {{}, {2, 0, 0, 0}}; // claims two entries
    for (const isp_table_slot &none : {isp_table_slot{}, {counted, nullptr}}) {
        std::vector<int16_t> coeffs(64, 99);
        compute_macc(&none, 1, 0, 0, 0, coeffs.data(), nullptr);
        EXPECT_EQ(coeffs[63], 8192);

        uint64_t digest = 0;
        for (const uint32_t table : {0x1u, 0x2u, 0x4u, 0x8u, 0x10u}) {
            compute_macc(&none, 0, 0, table, 0, coeffs.data(), nullptr);
            digest = test::digest(coeffs.data(), coeffs.size() * sizeof coeffs[0], digest);
        }
        EXPECT_EQ(digest, 0xba92eb149ccdb0f2u);
    }
}

} // namespace
