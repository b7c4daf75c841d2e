#include <array>
#include <cmath>
#include <numeric>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/matrix.h"
#include "qz_isp/polynomial.h"

namespace {

using floats = std::vector<float>;

floats upscale(const floats &coefficients, uint16_t in_w, uint16_t in_h, uint16_t out_w, uint16_t out_h)
{
    floats out(size_t{out_w} * out_h, -1.0f);
    do_polynomial_upscale(out.data(), coefficients.data(), in_w, in_h, out_w, out_h);
    return out;
}

// Powers of y with coefficients that are polynomials of x, both by Horner's rule in double precision.
double horner(const floats &c, double x, double y)
{
    const double by_power_of_y[5] = {c[0] + x * (c[1] + x * (c[3] + x * (c[6] + x * c[10]))),
                                     c[2] + x * (c[4] + x * (c[7] + x * c[11])), c[5] + x * (c[8] + x * c[12]),
                                     c[9] + x * c[13], c[14]};
    double sum = 0;
    for (int power = 4; power >= 0; --power)
        sum = sum * y + by_power_of_y[power];
    return sum;
}

floats random_coefficients(unsigned seed)
{
    std::mt19937 random(seed);
    floats c(15);
    for (float &value : c)
        value = static_cast<float>(static_cast<int>(random() % 2001) - 1000) / 1024.0f;
    return c;
}

TEST(do_polynomial_upscale, sizes_at_the_edge)
{
    floats c = random_coefficients(1);
    EXPECT_EQ(upscale(c, 9, 9, 1, 1)[0], upscale(c, 9, 9, 3, 3)[0]); // coordinate 1 on both axes
    EXPECT_EQ(upscale(c, 9, 9, 1, 3)[2], upscale(c, 9, 9, 3, 3)[6]);
    floats out(4, -1.0f);
    do_polynomial_upscale(out.data(), nullptr, 5, 5, 2, 0);
    do_polynomial_upscale(out.data(), nullptr, 5, 5, 0x70000u, 2); // no columns in the low 16 bits
    EXPECT_EQ(out, floats(4, -1.0f));
    do_polynomial_upscale(out.data(), c.data(), 5, 5, 0x10002u, 2);
    EXPECT_EQ(out, upscale(c, 5, 5, 2, 2));
}

TEST(do_polynomial_upscale, large_and_odd_grids_follow_the_polynomial)
{
    const floats c = random_coefficients(2);
    constexpr uint16_t grids[][4] = {
        {17, 13, 63, 47}, {2, 2, 600, 3}, {9, 7, 257, 2}, {5, 4, 31, 40}, {63, 47, 17, 13}};
    for (const auto &[in_w, in_h, out_w, out_h] : grids) {
        const floats out = upscale(c, in_w, in_h, out_w, out_h);
        for (int j = 0; j < out_h; ++j)
            for (int i = 0; i < out_w; ++i) {
                const double x = 1.0 + i * (in_w - 1.0) / (out_w - 1.0);
                const double y = 1.0 + j * (in_h - 1.0) / (out_h - 1.0);
                const double scale = std::pow(x + y, 4);
                ASSERT_NEAR(out[static_cast<size_t>(j * out_w + i)], horner(c, x, y), 2e-6 * scale) << i << ',' << j;
            }
    }
}

// Four input grids, four output grids, and what the fit needs to know about the input grid's size.
struct shading {
    shading(uint16_t in_width, uint16_t in_height, uint16_t out_width, uint16_t out_height)
        : in_w(in_width), in_h(in_height), out_w(out_width), out_h(out_height), design(15 * samples()),
          basis(design.size()), lu(225)
    {
        std::array<uint32_t, 15> index;
        lu_decomposition(design.data(), basis.data(), lu.data(), index.data(), in_w, in_h, 15);
        for (size_t c = 0; c < 4; ++c) {
            in[c] = upscale(random_coefficients(static_cast<unsigned>(c) + 10), in_w, in_h, in_w, in_h);
            out[c].assign(size_t{out_w} * out_h, -1.0f);
        }
    }

    size_t samples() const { return size_t{in_w} * in_h; }

    uint32_t run(uint16_t n = 15)
    {
        const float *from[4] = {in[0].data(), in[1].data(), in[2].data(), in[3].data()};
        float *to[4] = {out[0].data(), out[1].data(), out[2].data(), out[3].data()};
        return run(from, to, n);
    }

    uint32_t run(const float *const *from, float *const *to, uint16_t n = 15)
    {
        return lsc_polynomial_upscale_float(basis.data(), lu.data(), nullptr, from, to, in_w, in_h, out_w, out_h, n);
    }

    uint16_t in_w, in_h, out_w, out_h;
    floats design, basis, lu;
    std::array<floats, 4> in, out;
};

TEST(lsc_polynomial_upscale_float, sums_the_right_hand_side_in_order)
{
    for (const auto &[in_w, in_h] : {std::array<uint16_t, 2>{17, 13}, {1, 1}, {5, 3}, {16, 1}, {33, 31}}) {
        shading grids(in_w, in_h, 21, 5);
        grids.lu.assign(225, 0.0f);
        for (size_t k = 0; k < 15; ++k)
            grids.lu[k * 16] = 1.0f; // identity: the coefficients are the right-hand side itself
        EXPECT_EQ(grids.run(), 0u);
        const auto samples = static_cast<int32_t>(grids.samples());
        for (size_t c = 0; c < 4; ++c) {
            floats b(15);
            mul_mm(grids.basis.data(), samples * 4, 4, samples, 15, grids.in[c].data(), 4, 4, 1, samples, b.data(), 4,
                   4);
            EXPECT_EQ(grids.out[c], upscale(b, in_w, in_h, 21, 5)) << c;
        }
    }
}

TEST(lsc_polynomial_upscale_float, substitutes_forward_then_back)
{
    // L has 2 everywhere below its diagonal, U has 2 on and 4 above its diagonal; the input grid is the right-hand side
    // made for c = 1, 2, ..., 15. All values are small integers, so every step is exact.
    shading grids(15, 1, 15, 1);
    floats c(15), z(15), b(15);
    std::iota(c.begin(), c.end(), 1.0f);
    grids.basis.assign(225, 0.0f);
    for (size_t k = 0; k < 15; ++k) {
        grids.basis[k * 16] = 1.0f;
        for (size_t m = 0; m < 15; ++m) {
            grids.lu[k * 15 + m] = m <= k ? 2.0f : 4.0f;
            z[k] += m < k ? 0.0f : grids.lu[k * 15 + m] * c[m];
        }
        for (size_t m = 0; m <= k; ++m)
            b[k] += (m == k ? 1.0f : 2.0f) * z[m];
    }
    grids.in.fill(b);
    for (const uint16_t other_terms : {uint16_t{14}, uint16_t{16}}) {
        EXPECT_EQ(grids.run(other_terms), 2u);
        EXPECT_EQ(grids.out[0], floats(15, -1.0f));
    }
    EXPECT_EQ(grids.run(), 0u);
    for (const floats &out : grids.out)
        EXPECT_EQ(out, upscale(c, 15, 1, 15, 1));
}

TEST(lsc_polynomial_upscale_float, channels_see_what_earlier_ones_wrote)
{
    shading apart(6, 5, 6, 5);
    apart.run();
    shading in_turn(6, 5, 6, 5);
    in_turn.in[2] = apart.out[0];
    in_turn.run();

    shading shared(6, 5, 6, 5);
    const float *from[4] = {shared.in[0].data(), shared.in[1].data(), shared.out[0].data(), shared.in[3].data()};
    float *to[4] = {shared.out[0].data(), shared.in[1].data(), shared.out[2].data(), shared.out[3].data()};
    EXPECT_EQ(shared.run(from, to), 0u);
    EXPECT_EQ(shared.in[1], apart.out[1]); // in place
    EXPECT_EQ(shared.out[2], in_turn.out[2]);

    for (floats shading::*read : {&shading::basis, &shading::lu}) {
        shading over(6, 5, 6, 5), expected(6, 5, 6, 5);
        const float *sources[4] = {over.in[0].data(), over.in[1].data(), over.in[2].data(), over.in[3].data()};
        float *targets[4] = {(over.*read).data(), over.out[1].data(), over.out[2].data(), over.out[3].data()};
        EXPECT_EQ(over.run(sources, targets), 0u);
        std::copy(apart.out[0].begin(), apart.out[0].end(), (expected.*read).begin());
        expected.run();
        EXPECT_EQ(over.out[3], expected.out[3]);
    }
}

} // namespace
