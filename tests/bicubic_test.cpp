#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/bicubic.h"
#include "tests/guarded.h"

namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr uint16_t untouched = 0xbeef;

struct size {
    uint16_t width, height;

    size_t area() const { return size_t{width} * height; }
};

struct scaling {
    size from, to;
};

std::ostream &operator<<(std::ostream &out, const scaling &s)
{
    return out << s.from.width << 'x' << s.from.height << " to " << s.to.width << 'x' << s.to.height;
}

// Truncated to 32 bits, saturating, NaN to 0; the low half of it.
uint16_t low_half(float value)
{
    const double limited = std::clamp(static_cast<double>(value), -2147483648.0, 2147483647.0);
    return static_cast<uint16_t>(std::isnan(value) ? 0 : static_cast<int64_t>(limited));
}

// Samples of one magnitude in even rounds and of many in odd ones, as many of them not finite as the round's number.
void fill(const guarded<float> &plane, uint32_t round)
{
    constexpr float odd[] = {inf, -inf, NAN, 3e38f, -3e38f, 1e-42f, 1e12f, -2097152.0f, 2097151.9f};
    std::mt19937 random(round);
    for (float &sample : plane)
        sample = std::ldexp(static_cast<float>(random() % 0x3fffff) / 65536.0f,
                            round % 2 == 0 ? 0 : static_cast<int>(random() % 60) - 25);
    for (uint32_t i = 0; i < round; ++i)
        plane[random() % plane.size()] = odd[random() % std::size(odd)];
}

TEST(border, is_extrapolated_from_the_side_that_the_mode_names)
{
    // 5 x 5: row r, column c holds 10 r^3 + c^3.
    float samples[25];
    for (int i = 0; i < 25; ++i)
        samples[i] = static_cast<float>(10 * std::pow(i / 5, 3) + std::pow(i % 5, 3));
    const float expected[] = {-92, 28, 70, 82, -11, -5, 49, 55, 0, 0};
    for (uint32_t mode = 0; mode < 10; ++mode) {
        float *middle = samples + 12;
        interpolate_gain_value(middle, 0xabcd0005u, mode == 9 ? UINT32_MAX : mode);
        EXPECT_EQ(*middle, expected[mode]) << mode;
    }
    // (1e8 + 1e8) + (4 - 1) - 2e8: in single precision the sum loses the 3.
    float corner[9] = {0, 1e8f, 2e8f, 2, 0, 0, 1, 0, 0};
    interpolate_gain_value(corner, 3, 4);
    EXPECT_EQ(corner[0], 0.0f);
}

TEST(border, extended_buffer_of_few_samples_and_of_none)
{
    const struct {
        size plane;
        std::vector<uint16_t> samples;
        std::vector<float> buffer;
    } cases[] = {
        {{3, 2}, {1, 2, 4, 8, 16, 64}, {0, -6, -12, -56, -100, -144, //
                                        0, 1,  2,   4,   6,    8,    //
                                        0, 8,  16,  64,  112,  160,  //
                                        0, 15, 30,  124, 218,  312,  //
                                        0, 22, 44,  184, 324,  464}},
        // Samples that are read before they are written are 0.
        {{1, 1}, {3}, {12, 6, 0, -6, 6, 3, 0, -3, 0, 0, 0, 0, -6, -3, 0, 3}},
        {{0, 2}, {}, std::vector<float>(15)},
        {{2, 0}, {}, std::vector<float>(15)},
    };
    for (const auto &c : cases) {
        const guarded<float> buffer(c.buffer.size(), NAN);
        create_extrapolated_buffer_for_bicubic_u16(c.samples.data(), buffer.data(), c.plane.width, c.plane.height);
        EXPECT_EQ(std::vector<float>(buffer.begin(), buffer.end()), c.buffer);
    }
}

// A plane that goes on in straight lines beyond its edges; one sample across, what lies beyond does not matter.
template <typename Real>
struct continued {
    std::vector<Real> samples;
    size plane;

    Real at(int row, int column) const
    {
        const int across = column < 0 ? 1 : column >= plane.width ? -1 : 0;
        const int down = row < 0 ? 1 : row >= plane.height ? -1 : 0;
        if ((across != 0 && plane.width == 1) || (down != 0 && plane.height == 1))
            return 0;
        if (across == 0 && down == 0)
            return samples[static_cast<size_t>(row) * plane.width + static_cast<size_t>(column)];
        const Real beside = across != 0 ? at(row, column + across) : 0;
        const Real below = down != 0 ? at(row + down, column) : 0;
        if (across == 0)
            return 2 * below - at(row + 2 * down, column);
        if (down == 0)
            return 2 * beside - at(row, column + 2 * across);
        const Real vertical = 2 * below - at(row + 2 * down, column);
        return (2 * beside + vertical - at(row, column + 2 * across)) / 2;
    }
};

double keys_weight(double distance)
{
    const double d = std::abs(distance);
    return d < 1 ? (1.5 * d - 2.5) * d * d + 1 : d < 2 ? ((-0.5 * d + 2.5) * d - 4) * d + 2 : 0;
}

// Source position of a destination index: the step is rounded to single precision, and so is the product.
float position(int index, int src, int dst)
{
    const float step = static_cast<float>(src - 1) / static_cast<float>(dst - 1);
    return static_cast<float>(index) * step;
}

template <typename Sample>
void expect_kernel(uint32_t (*upscale)(const Sample *const *, float *const *, uint16_t, uint16_t, uint16_t, uint16_t,
                                       uint16_t),
                   const scaling &s, double tolerance)
{
    const guarded<Sample> src[] = {guarded<Sample>(s.from.area()), guarded<Sample>(s.from.area())};
    const guarded<float> dst[] = {guarded<float>(s.to.area(), NAN), guarded<float>(s.to.area(), NAN)};
    const Sample *src_planes[] = {src[0].data(), src[1].data()};
    float *dst_planes[] = {dst[0].data(), dst[1].data()};
    std::mt19937 random(s.to.width);
    for (const auto &plane : src)
        std::generate(plane.begin(), plane.end(), [&random] { return static_cast<Sample>(random()); });
    ASSERT_EQ(upscale(src_planes, dst_planes, s.from.width, s.from.height, s.to.width, s.to.height, 2), 0u);

    for (size_t i = 0; i < dst[0].size() * 2; ++i) {
        const size_t plane = i % 2;
        const continued<double> reference{{src[plane].begin(), src[plane].end()}, s.from};
        const double y = position(static_cast<int>(i / 2) / s.to.width, s.from.height, s.to.height);
        const double x = position(static_cast<int>(i / 2) % s.to.width, s.from.width, s.to.width);
        double sum = 0;
        for (int r = static_cast<int>(y) - 1; r < static_cast<int>(y) + 3; ++r)
            for (int c = static_cast<int>(x) - 1; c < static_cast<int>(x) + 3; ++c)
                sum += keys_weight(y - r) * keys_weight(x - c) * reference.at(r, c);
        ASSERT_NEAR(dst[plane][i / 2], std::clamp(sum, -255.0, 65535.0), tolerance) << s << ' ' << i;
    }
}

TEST(upscalers, follow_the_kernel_within_minus_255_and_65535)
{
    constexpr scaling cases[] = {{{1, 1}, {2, 2}},     {{2, 2}, {3, 5}},    {{1, 4}, {9, 4}},   {{5, 1}, {5, 7}},
                                 {{17, 13}, {27, 21}}, {{31, 3}, {273, 9}}, {{7, 6}, {300, 6}}, {{12, 9}, {12, 9}}};
    for (const scaling &s : cases) {
        const bool copies = s.from.width == s.to.width && s.from.height == s.to.height;
        expect_kernel(image_bicubic_upscale_uint8_to_float, s, copies ? 0 : 2e-4);
        expect_kernel(image_bicubic_upscale_uint16_to_float, s, copies ? 0 : 0.05);
    }
}

float cubic(const float *q, double t)
{
    const double inner = 3.0 * (double{q[1]} - q[2]) + q[3] - q[0];
    const double middle = 4.0 * q[2] + 2.0 * q[0] - 5.0 * q[1] - q[3] + t * inner;
    return static_cast<float>(q[1] + 0.5 * t * (double{q[2]} - q[0] + t * middle));
}

// One sample after the other, each from its sixteen neighbours. With cancelling samples the rounding of every sum
// shows.
void expect_resize(const scaling &s, uint32_t round, bool cancelling = false)
{
    const guarded<float> src(s.from.area());
    fill(src, round);
    for (size_t i = 1; cancelling && i < src.size(); i += s.from.width)
        src[i + 1] = -(src[i] = 0x1p45f);
    const guarded<uint16_t> dst(s.to.area(), untouched);
    ASSERT_EQ(
        bicubic_resize_32f_to_u16p10(src.data(), s.from.height, s.from.width, dst.data(), s.to.height, s.to.width), 0u);
    const continued<float> reference{{src.begin(), src.end()}, s.from};
    const auto place = [](size_t index, int from, int to) {
        return static_cast<float>(index) / static_cast<float>(to - 1) * static_cast<float>(from - 1);
    };
    for (size_t i = 0; i < dst.size(); ++i) {
        const float y = place(i / s.to.width, s.from.height, s.to.height);
        const float x = place(i % s.to.width, s.from.width, s.to.width);
        float rows[4];
        for (int r = 0; r < 4; ++r) {
            float q[4];
            for (int c = 0; c < 4; ++c)
                q[c] = reference.at(static_cast<int>(y) + r - 1, static_cast<int>(x) + c - 1);
            rows[r] = cubic(q, x - std::floor(x));
        }
        ASSERT_EQ(dst[i], low_half(cubic(rows, y - std::floor(y)) * 1024.0f)) << s << " round " << round << " at " << i;
    }
}

TEST(resize, is_exact_for_every_shape_and_value)
{
    constexpr size sources[] = {{17, 13}, {63, 47}, {1, 9}, {9, 1}, {2, 2}, {1, 1}, {3, 90}, {300, 3}, {5, 4}};
    constexpr size targets[] = {{27, 21}, {31, 18}, {2, 2}, {3, 5}, {4, 90}, {16, 16}, {257, 3}, {530, 2}};
    for (const size &from : sources)
        for (const size &to : targets)
            expect_resize({from, to}, 0);
    expect_resize({{4, 200}, {3, 200}}, 0, true);
    for (uint32_t round = 1; round < 24; ++round) {
        expect_resize({{23, 11}, {40, 30}}, round);
        expect_resize({{23, 11}, {7, 6}}, round);
    }
}

// The samples under a destination sample and their weights, walked in the order of the sum.
struct touched {
    std::vector<size_t> index;
    std::vector<float> weight;

    touched(size_t destination, float step, int limit, int origin)
    {
        const auto edge = [=](size_t i) { return std::min(static_cast<float>(i) * step, static_cast<float>(limit)); };
        const float begin = edge(destination);
        const float end = edge(destination + 1);
        for (int k = static_cast<int>(begin); static_cast<float>(k) < end; ++k) {
            const auto at = static_cast<float>(k);
            weight.push_back(at < begin ? 1.0f - (begin - at) : at + 1.0f > end && !index.empty() ? end - at : 1.0f);
            index.push_back(static_cast<size_t>(std::min(origin + k, limit - 1)));
        }
    }
};

void expect_downscale(const scaling &s, const isp_roi *roi, uint32_t round)
{
    const guarded<float> src(s.from.area());
    fill(src, round);
    const guarded<uint16_t> dst(s.to.area(), untouched);
    const float *src_plane = src.data();
    uint16_t *dst_plane = dst.data();
    ASSERT_EQ(image_downscale_32f_to_u16p10(&src_plane, &dst_plane, s.from.width, s.from.height, s.to.width,
                                            s.to.height, 1, roi),
              0u);
    const isp_roi region = roi != nullptr ? *roi : isp_roi{0, 0, s.from.width, s.from.height};
    const float step_x = static_cast<float>(region.width) / static_cast<float>(s.to.width);
    const float step_y = static_cast<float>(region.height) / static_cast<float>(s.to.height);
    for (size_t i = 0; i < dst.size(); ++i) {
        const touched rows(i / s.to.width, step_y, s.from.height, region.y);
        const touched columns(i % s.to.width, step_x, s.from.width, region.x);
        float sum = 0.0f;
        for (size_t k = 0; k < rows.index.size(); ++k)
            for (size_t m = 0; m < columns.index.size(); ++m)
                sum += columns.weight[m] * rows.weight[k] * src[rows.index[k] * s.from.width + columns.index[m]];
        const float norm = 1.0f / (step_x * step_y);
        ASSERT_EQ(dst[i], low_half((sum * norm + 0.00048828125f) * 1024.0f)) << s << " round " << round << " at " << i;
    }
}

TEST(area_average, is_exact_for_every_ratio_region_and_value)
{
    constexpr scaling cases[] = {
        {{128, 96}, {27, 21}}, {{640, 48}, {64, 3}}, {{14, 14}, {13, 13}}, {{4, 4}, {3, 3}},     {{90, 7}, {3, 3}},
        {{600, 40}, {599, 3}}, {{61, 53}, {6, 5}},   {{97, 4}, {21, 3}},   {{48, 33}, {12, 11}}, {{2100, 4}, {525, 3}},
        {{40, 40}, {13, 12}},  {{134, 8}, {67, 4}},  {{20, 6}, {10, 3}},   {{203, 7}, {29, 3}},  {{165, 4}, {33, 3}}};
    std::mt19937 random(5);
    for (const scaling &s : cases)
        for (uint32_t round = 0; round < 16; ++round) {
            isp_roi roi;
            roi.x = static_cast<uint16_t>(random() % s.from.width);
            roi.y = static_cast<uint16_t>(random() % s.from.height);
            const size_t rest = s.from.width - size_t{roi.x}; // any, to the source's edge, or whole samples
            const size_t widths[] = {random() % (rest + 1), rest, rest, rest - rest % s.to.width};
            roi.width = static_cast<uint16_t>(widths[round % 4]);
            roi.height = static_cast<uint16_t>(s.from.height - roi.y);
            expect_downscale(s, round % 4 == 1 ? nullptr : &roi, round < 8 ? 0 : round);
        }
}

TEST(area_average, of_disjoint_blocks_in_every_plane)
{
    const guarded<float> ramp(72);
    std::iota(ramp.begin(), ramp.end(), 0.0f);
    const float *src[] = {ramp.data(), ramp.data() + 36};
    const guarded<uint16_t> out(18, untouched);
    uint16_t *dst[] = {out.data(), out.data() + 9};
    ASSERT_EQ(image_downscale_32f_to_u16p10(src, dst, 6, 6, 3, 3, 2, nullptr), 0u);
    for (size_t i = 0; i < 18; ++i) // 3.5 more than the block's first sample
        EXPECT_EQ(out[i], (1024 * (12 * (i / 3) + 2 * (i % 3)) + 3584) % 65536);
}

struct refusal {
    enum { up, resize, area } routine;
    std::vector<scaling> sizes;
    isp_roi roi = {0, 0, 6, 6};
};

TEST(every_routine, refuses_sizes_it_cannot_reach_and_writes_nothing)
{
    const refusal cases[] = {
        {refusal::up, {{{3, 3}, {2, 9}}, {{3, 3}, {9, 2}}, {{2, 1}, {1, 1}}, {{1, 3}, {1, 3}}, {{3, 1}, {3, 1}}}},
        {refusal::up, {{{0, 3}, {4, 4}}, {{3, 0}, {4, 4}}}},
        {refusal::resize, {{{2, 2}, {2, 1}}, {{2, 2}, {1, 2}}, {{2, 0}, {2, 2}}, {{0, 2}, {2, 2}}}},
        {refusal::resize, {{{2, 2}, {2, 0}}, {{2, 2}, {0, 2}}}},
        {refusal::area, {{{6, 6}, {6, 3}}, {{6, 6}, {3, 6}}, {{6, 6}, {2, 3}}, {{6, 6}, {3, 2}}}},
        {refusal::area, {{{6, 6}, {3, 3}}}, {6, 0, 0, 6}},
        {refusal::area, {{{6, 6}, {3, 3}}}, {0, 6, 6, 0}},
        {refusal::area, {{{6, 6}, {3, 3}}}, {1, 0, 65535, 6}},
        {refusal::area, {{{6, 6}, {3, 3}}}, {0, 1, 6, 6}}};
    const std::vector<float> samples(36, 2.0f);
    const uint8_t bytes[9] = {};
    const uint8_t *byte_plane = bytes;
    const float *src = samples.data();
    std::vector<uint16_t> p10(36, untouched);
    std::vector<float> values(36, 7.0f);
    uint16_t *dst = p10.data();
    float *dst_values = values.data();
    for (const auto &[routine, all_sizes, roi] : cases)
        for (const scaling &sizes : all_sizes) {
            const auto &[from, to] = sizes;
            testing::internal::CaptureStderr();
            const uint32_t status =
                routine == refusal::up ? image_bicubic_upscale_uint8_to_float(&byte_plane, &dst_values, from.width,
                                                                              from.height, to.width, to.height, 1)
                : routine == refusal::resize
                    ? bicubic_resize_32f_to_u16p10(src, from.height, from.width, dst, to.height, to.width)
                    : image_downscale_32f_to_u16p10(&src, &dst, from.width, from.height, to.width, to.height, 1, &roi);
            const bool logs = routine == refusal::up && (to.width < from.width || to.height < from.height);
            EXPECT_EQ(testing::internal::GetCapturedStderr(), logs ? "qz[0] Not upscaling\n" : "") << sizes;
            EXPECT_EQ(status, to.area() == 0 ? 0u : 32u) << routine << ' ' << sizes;
        }
    EXPECT_EQ(values, std::vector<float>(36, 7.0f));
    EXPECT_EQ(p10, std::vector<uint16_t>(36, untouched));
}

} // namespace
