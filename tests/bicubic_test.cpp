#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "guarded.h"
#include "qz_isp/bicubic.h"

namespace {

constexpr float inf = std::numeric_limits<float>::infinity();
constexpr uint16_t untouched = 0xbeef;

struct size {
    uint16_t width, height;

    size_t area() const
    {
        return size_t{width} * height;
    }
};

std::ostream &operator<<(std::ostream &out, const size &s)
{
    return out << s.width << 'x' << s.height;
}

// Truncation to 32 bits, saturating, NaN to 0; the low half of it.
uint16_t low_half(float value)
{
    if (std::isnan(value))
        return 0;
    const double limited = std::clamp(static_cast<double>(value), -2147483648.0, 2147483647.0);
    return static_cast<uint16_t>(static_cast<int64_t>(limited));
}

void fill(const guarded<float> &plane, uint32_t seed, float low, float high)
{
    std::mt19937 random(seed);
    for (float &sample : plane)
        sample = low + (high - low) * static_cast<float>(random() & 0xffffff) / 16777215.0f;
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
}

TEST(border, corners_halve_the_sum_of_both_directions_in_order)
{
    // (1e8 + 1e8) + (4 - 1) - 2e8: the single-precision sum loses the 3.
    float samples[9] = {0, 1e8f, 2e8f, 2, 0, 0, 1, 0, 0};
    interpolate_gain_value(samples, 3, 4);
    EXPECT_EQ(samples[0], 0.0f);
}

TEST(border, extended_buffer_of_few_samples_and_of_none)
{
    struct {
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
        {{0, 0}, {}, std::vector<float>(9)},
    };
    for (const auto &c : cases) {
        const guarded<float> buffer(c.buffer.size(), NAN);
        create_extrapolated_buffer_for_bicubic_u16(c.samples.data(), buffer.data(), c.plane.width, c.plane.height);
        EXPECT_EQ(std::vector<float>(buffer.begin(), buffer.end()), c.buffer) << c.plane;
    }
}

// Value at a position of a plane that continues in straight lines beyond its edge, by the kernel's four weights.
struct smooth_plane {
    std::vector<double> samples;
    size plane;

    double at(int row, int column) const
    {
        if (column < 0)
            return 2 * at(row, column + 1) - at(row, column + 2);
        if (column >= plane.width)
            return 2 * at(row, column - 1) - at(row, column - 2);
        if (row < 0)
            return 2 * at(row + 1, column) - at(row + 2, column);
        if (row >= plane.height)
            return 2 * at(row - 1, column) - at(row - 2, column);
        return samples[static_cast<size_t>(row * plane.width + column)];
    }

    static double weight(double distance)
    {
        const double d = std::abs(distance);
        return d < 1 ? (1.5 * d - 2.5) * d * d + 1 : d < 2 ? ((-0.5 * d + 2.5) * d - 4) * d + 2 : 0;
    }

    double operator()(double y, double x) const
    {
        double sum = 0;
        for (int r = static_cast<int>(y) - 1; r < static_cast<int>(y) + 3; ++r)
            for (int c = static_cast<int>(x) - 1; c < static_cast<int>(x) + 3; ++c)
                if (const double w = weight(y - r) * weight(x - c); w != 0)
                    sum += w * at(r, c);
        return sum;
    }
};

// Source position of a destination index: the step is rounded to single precision, and so is the product.
float position(int index, int src, int dst)
{
    const float step = static_cast<float>(src - 1) / static_cast<float>(dst - 1);
    return static_cast<float>(index) * step;
}

template <typename Sample>
uint32_t upscale(const Sample *src, float *dst, size from, size to, uint16_t planes = 1);

template <>
uint32_t upscale(const uint8_t *src, float *dst, size from, size to, uint16_t planes)
{
    const uint8_t *src_planes[] = {src, src + from.area()};
    float *dst_planes[] = {dst, dst + to.area()};
    return image_bicubic_upscale_uint8_to_float(src_planes, dst_planes, from.width, from.height, to.width, to.height,
                                                planes);
}

template <>
uint32_t upscale(const uint16_t *src, float *dst, size from, size to, uint16_t planes)
{
    const uint16_t *src_planes[] = {src, src + from.area()};
    float *dst_planes[] = {dst, dst + to.area()};
    return image_bicubic_upscale_uint16_to_float(src_planes, dst_planes, from.width, from.height, to.width, to.height,
                                                 planes);
}

struct scaling {
    size from, to;
};

constexpr scaling upscalings[] = {{{1, 1}, {2, 2}},     {{2, 2}, {3, 5}},     {{1, 4}, {9, 4}},   {{5, 1}, {5, 7}},
                                  {{17, 13}, {27, 21}}, {{31, 3}, {273, 40}}, {{7, 6}, {600, 6}}, {{64, 48}, {64, 48}}};

template <typename Sample>
void expect_kernel_over_planes()
{
    for (const scaling &s : upscalings) {
        const guarded<Sample> src(2 * s.from.area());
        std::mt19937 random(s.to.width);
        for (Sample &sample : src)
            sample = static_cast<Sample>(random());
        const guarded<float> dst(2 * s.to.area(), NAN);
        ASSERT_EQ(upscale(src.data(), dst.data(), s.from, s.to, 2), 0u);
        for (size_t plane = 0; plane < 2; ++plane) {
            const Sample *first = src.data() + plane * s.from.area();
            const smooth_plane reference{std::vector<double>(first, first + s.from.area()), s.from};
            const float *out = dst.data() + plane * s.to.area();
            for (int r = 0; r < s.to.height; ++r)
                for (int c = 0; c < s.to.width; ++c, ++out) {
                    const double value =
                        reference(position(r, s.from.height, s.to.height), position(c, s.from.width, s.to.width));
                    ASSERT_NEAR(*out, std::clamp(value, -255.0, 65535.0), sizeof(Sample) == 1 ? 2e-4 : 0.05)
                        << s.from << ' ' << s.to << ' ' << r << ' ' << c;
                }
        }
    }
}

TEST(upscalers, follow_the_kernel_on_planes_that_continue_straight)
{
    expect_kernel_over_planes<uint8_t>();
    expect_kernel_over_planes<uint16_t>();
}

TEST(upscalers, return_the_source_at_its_own_size_and_keep_constants_and_ramps)
{
    const guarded<uint16_t> src(20 * 9);
    const guarded<float> same(src.size());
    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<uint16_t>(i * 25013);
    ASSERT_EQ(upscale(src.data(), same.data(), {20, 9}, {20, 9}), 0u);
    EXPECT_TRUE(std::equal(src.begin(), src.end(), same.begin()));

    const guarded<uint8_t> flat(20 * 9, 201);
    const guarded<float> out(300 * 55);
    ASSERT_EQ(upscale(flat.data(), out.data(), {20, 9}, {300, 55}), 0u);
    EXPECT_EQ(std::count(out.begin(), out.end(), 201.0f), static_cast<long>(out.size()));

    for (size_t i = 0; i < src.size(); ++i)
        src[i] = static_cast<uint16_t>(100 + 17 * (i % 20) + 110 * (i / 20));
    ASSERT_EQ(upscale(src.data(), out.data(), {20, 9}, {300, 55}), 0u);
    for (int r = 0; r < 55; ++r)
        for (int c = 0; c < 300; ++c)
            ASSERT_NEAR(out[static_cast<size_t>(r * 300 + c)],
                        100 + 17.0 * position(c, 20, 300) + 110.0 * position(r, 9, 55), 1e-3);
}

TEST(upscalers, limit_overshoot_to_minus_255_and_65535)
{
    const uint16_t edge[] = {65535, 0, 0, 65535, 65535, 0, 65535, 0, 0, 65535, 65535, 0};
    const guarded<float> out(60 * 4);
    ASSERT_EQ(upscale(edge, out.data(), {6, 2}, {60, 4}), 0u);
    EXPECT_EQ(*std::min_element(out.begin(), out.end()), -255.0f);
    EXPECT_EQ(*std::max_element(out.begin(), out.end()), 65535.0f);
}

TEST(upscalers, refuse_sizes_they_cannot_reach_and_say_so_when_it_is_shrinking)
{
    constexpr struct {
        scaling sizes;
        const char *text;
    } cases[] = {
        {{{3, 3}, {2, 9}}, "Not upscaling"}, {{{3, 3}, {9, 2}}, "Not upscaling"}, {{{2, 1}, {1, 1}}, "Not upscaling"},
        {{{1, 3}, {1, 3}}, nullptr},         {{{3, 1}, {3, 1}}, nullptr},         {{{0, 3}, {4, 4}}, nullptr},
        {{{3, 0}, {4, 4}}, nullptr},         {{{0, 0}, {0, 0}}, nullptr},
    };
    for (const auto &c : cases) {
        const uint8_t src[18] = {};
        float dst[36];
        std::fill(std::begin(dst), std::end(dst), 7.0f);
        testing::internal::CaptureStderr();
        EXPECT_EQ(upscale(src, dst, c.sizes.from, c.sizes.to), 32u) << c.sizes.from << ' ' << c.sizes.to;
        const std::string logged = testing::internal::GetCapturedStderr();
        EXPECT_EQ(logged, c.text != nullptr ? "qz[0] " + std::string(c.text) + "\n" : "");
        EXPECT_EQ(std::count(std::begin(dst), std::end(dst), 7.0f), 36);
    }
    EXPECT_EQ(image_bicubic_upscale_uint8_to_float(nullptr, nullptr, 2, 2, 4, 4, 0), 0u);
}

// One sample after the other from its sixteen neighbours, in double precision along rows and then down, each rounded.
struct resize_reference {
    std::vector<float> buffer;
    size plane;

    resize_reference(const guarded<float> &src, size s) : buffer((s.width + 3u) * (s.height + 3u)), plane(s)
    {
        const int w = s.width;
        const int h = s.height;
        for (int r = 1; r <= h; ++r) {
            for (int c = 1; c <= w; ++c)
                at(r, c) = src[static_cast<size_t>((r - 1) * w + c - 1)];
            extend(r, 0, 2);
            extend(r, w + 1, 3);
            extend(r, w + 2, 3);
        }
        for (int c = 1; c <= w; ++c)
            extend(0, c, 0);
        extend(0, 0, 4);
        extend(0, w + 1, 5);
        extend(0, w + 2, 5);
        for (int c = 1; c <= w; ++c) {
            extend(h + 1, c, 1);
            extend(h + 2, c, 1);
        }
        extend(h + 1, 0, 6);
        extend(h + 2, 0, 6);
        for (int r = h + 1; r < h + 3; ++r)
            for (int c = w + 1; c < w + 3; ++c)
                extend(r, c, 7);
    }

    float &at(int row, int column)
    {
        return buffer[static_cast<size_t>(row * (plane.width + 3) + column)];
    }

    void extend(int row, int column, uint32_t mode)
    {
        interpolate_gain_value(&at(row, column), plane.width + 3u, mode);
    }

    static float cubic(const float *q, double t)
    {
        const double q0 = q[0];
        const double q1 = q[1];
        const double q2 = q[2];
        const double q3 = q[3];
        double value = 3.0 * (q1 - q2) + q3 - q0;
        value = 4.0 * q2 + 2.0 * q0 - 5.0 * q1 - q3 + t * value;
        value = q2 - q0 + t * value;
        return static_cast<float>(q1 + 0.5 * t * value);
    }

    uint16_t operator()(int row, int column, size to)
    {
        const float y =
            static_cast<float>(row) / static_cast<float>(to.height - 1) * static_cast<float>(plane.height - 1);
        const float x =
            static_cast<float>(column) / static_cast<float>(to.width - 1) * static_cast<float>(plane.width - 1);
        const int fy = static_cast<int>(std::floor(y));
        const int fx = static_cast<int>(std::floor(x));
        float rows[4];
        for (int k = 0; k < 4; ++k)
            rows[k] = cubic(&at(fy + k, fx), x - std::floor(x));
        return low_half(cubic(rows, y - std::floor(y)) * 1024.0f);
    }
};

void expect_resize(const guarded<float> &src, size from, size to)
{
    const guarded<uint16_t> dst(to.area(), untouched);
    ASSERT_EQ(bicubic_resize_32f_to_u16p10(src.data(), from.height, from.width, dst.data(), to.height, to.width), 0u);
    resize_reference reference(src, from);
    for (int r = 0; r < to.height; ++r)
        for (int c = 0; c < to.width; ++c)
            ASSERT_EQ(dst[static_cast<size_t>(r * to.width + c)], reference(r, c, to))
                << from << ' ' << to << ' ' << r << ' ' << c;
}

TEST(resize, is_exact_for_every_shape_up_and_down)
{
    constexpr size edges[] = {{17, 13}, {63, 47}, {1, 9}, {9, 1}, {2, 2}, {1, 1}, {3, 300}, {400, 3}, {5, 4}};
    constexpr size targets[] = {{27, 21}, {31, 18}, {2, 2}, {3, 5}, {4, 90}, {16, 16}, {15, 33}, {257, 3}, {530, 2}};
    for (const size &from : edges)
        for (const size &to : targets) {
            const guarded<float> src(from.area());
            fill(src, from.width * 31u + to.width, 0.5f, 63.0f);
            expect_resize(src, from, to);
        }
}

TEST(resize, keeps_the_order_of_sums_for_values_far_apart_and_not_finite)
{
    constexpr size from = {23, 11};
    constexpr float odd[] = {inf, -inf, NAN, 3e38f, -3e38f, 1e-42f, 1e12f, -2097152.0f, 2097151.9f};
    for (uint32_t round = 0; round < 24; ++round) {
        const guarded<float> src(from.area());
        fill(src, round, -1.0f, 1.0f);
        std::mt19937 random(round);
        for (float &sample : src)
            sample = std::ldexp(sample, static_cast<int>(random() % 60) - 25);
        for (uint32_t i = 0; i < round; ++i)
            src[random() % src.size()] = odd[random() % std::size(odd)];
        expect_resize(src, from, {40, 30});
        expect_resize(src, from, {7, 6});
    }
}

TEST(resize, puts_corners_on_corners_truncated)
{
    const float src[] = {0.9999f, 2, 3.1f, 4, 5, 6, 63.9999f, 8, 1.5f};
    const guarded<uint16_t> dst(size_t{41} * 3, untouched);
    ASSERT_EQ(bicubic_resize_32f_to_u16p10(src, 3, 3, dst.data(), 3, 41), 0u);
    EXPECT_EQ(dst[0], 1023);
    EXPECT_EQ(dst[40], 3174);
    EXPECT_EQ(dst[82], 65535);
    EXPECT_EQ(dst[122], 1536);
}

TEST(resize, takes_rows_first_and_refuses_what_has_no_position)
{
    constexpr struct {
        uint16_t src_rows, src_cols, dst_rows, dst_cols;
        uint32_t status;
    } cases[] = {{2, 2, 1, 2, 32}, {2, 2, 2, 1, 32}, {0, 2, 2, 2, 32}, {2, 0, 2, 2, 32},
                 {2, 2, 0, 2, 0},  {2, 2, 2, 0, 0},  {2, 2, 0, 0, 0}};
    const float src[] = {1, 2, 3, 4};
    for (const auto &c : cases) {
        uint16_t dst[] = {untouched, untouched, untouched, untouched};
        EXPECT_EQ(bicubic_resize_32f_to_u16p10(src, c.src_rows, c.src_cols, dst, c.dst_rows, c.dst_cols), c.status);
        EXPECT_EQ(std::count(std::begin(dst), std::end(dst), untouched), 4);
    }
    const guarded<uint16_t> wide(6);
    ASSERT_EQ(bicubic_resize_32f_to_u16p10(src, 2, 2, wide.data(), 2, 3), 0u);
    EXPECT_EQ(std::vector<uint16_t>(wide.begin(), wide.end()),
              (std::vector<uint16_t>{1024, 1536, 2048, 3072, 3584, 4096}));
}

// The samples under a destination sample and their weights, walked in the order of the sum.
struct touched {
    std::vector<int> index;
    std::vector<float> weight;

    touched(int destination, float step, int limit, int origin)
    {
        const auto edge = [=](int i) { return std::min(static_cast<float>(i) * step, static_cast<float>(limit)); };
        const float begin = edge(destination);
        const float end = edge(destination + 1);
        for (int at = static_cast<int>(begin); static_cast<float>(at) < end; ++at) {
            const bool cut = static_cast<float>(at) > end - 1.0f && static_cast<float>(at) != end - 1.0f;
            index.push_back(std::min(origin + at, limit - 1));
            weight.push_back(index.size() == 1 ? 1.0f - (begin - std::floor(begin))
                             : cut             ? end - std::floor(end)
                                               : 1.0f);
        }
    }
};

void expect_downscale(const guarded<float> &src, size from, size to, const isp_roi *roi)
{
    const guarded<uint16_t> dst(to.area(), untouched);
    const float *src_planes[] = {src.data()};
    uint16_t *dst_planes[] = {dst.data()};
    ASSERT_EQ(
        image_downscale_32f_to_u16p10(src_planes, dst_planes, from.width, from.height, to.width, to.height, 1, roi),
        0u);
    const isp_roi region = roi != nullptr ? *roi : isp_roi{0, 0, from.width, from.height};
    const float step_x = static_cast<float>(region.width) / to.width;
    const float step_y = static_cast<float>(region.height) / to.height;
    for (int r = 0; r < to.height; ++r)
        for (int c = 0; c < to.width; ++c) {
            const touched rows(r, step_y, from.height, region.y);
            const touched columns(c, step_x, from.width, region.x);
            float sum = 0.0f;
            for (size_t k = 0; k < rows.index.size(); ++k)
                for (size_t m = 0; m < columns.index.size(); ++m)
                    sum += columns.weight[m] * rows.weight[k] *
                           src[static_cast<size_t>(rows.index[k] * from.width + columns.index[m])];
            const float norm = 1.0f / (step_x * step_y);
            ASSERT_EQ(dst[static_cast<size_t>(r * to.width + c)], low_half((sum * norm + 0.00048828125f) * 1024.0f))
                << from << ' ' << to << ' ' << r << ' ' << c;
        }
}

TEST(area_average, is_exact_for_every_ratio_and_region)
{
    constexpr scaling cases[] = {{{128, 96}, {27, 21}}, {{640, 48}, {64, 3}}, {{14, 14}, {13, 13}},  {{4, 4}, {3, 3}},
                                 {{90, 7}, {3, 3}},     {{700, 9}, {150, 8}}, {{600, 40}, {599, 3}}, {{61, 53}, {6, 5}},
                                 {{100, 33}, {10, 11}}, {{97, 4}, {21, 3}},   {{40, 40}, {13, 12}}};
    std::mt19937 random(5);
    for (const scaling &s : cases) {
        const guarded<float> src(s.from.area());
        fill(src, s.from.width, 0.0f, 64.0f);
        expect_downscale(src, s.from, s.to, nullptr);
        for (int round = 0; round < 60; ++round) {
            isp_roi roi;
            roi.x = static_cast<uint16_t>(random() % s.from.width);
            roi.y = static_cast<uint16_t>(random() % s.from.height);
            roi.width = static_cast<uint16_t>(s.from.width - roi.x); // to the source's edge
            roi.height = static_cast<uint16_t>(s.from.height - roi.y);
            if (round % 3 == 0)
                roi.width = static_cast<uint16_t>(random() % (roi.width + 1u));
            expect_downscale(src, s.from, s.to, &roi);
        }
    }
}

TEST(area_average, leaves_out_neighbours_that_are_not_finite)
{
    constexpr size from = {45, 20};
    for (uint32_t round = 0; round < 30; ++round) {
        const guarded<float> src(from.area());
        fill(src, round, -1e3f, 1e6f);
        std::mt19937 random(round);
        constexpr float odd[] = {inf, -inf, NAN, 3e38f, -3e38f, 1e-42f};
        for (uint32_t i = 0; i < round; ++i)
            src[random() % src.size()] = odd[random() % std::size(odd)];
        expect_downscale(src, from, {static_cast<uint16_t>(3 + round), 7}, nullptr);
    }
}

TEST(area_average, of_blocks_and_constants_for_every_plane)
{
    std::vector<float> first(36);
    for (size_t i = 0; i < 36; ++i)
        first[i] = static_cast<float>(i);
    const std::vector<float> second(36, 1.0f);
    const float *src_planes[] = {first.data(), second.data()};
    const guarded<uint16_t> dst(18, untouched);
    uint16_t *dst_planes[] = {dst.data(), dst.data() + 9};
    ASSERT_EQ(image_downscale_32f_to_u16p10(src_planes, dst_planes, 6, 6, 3, 3, 2, nullptr), 0u);
    for (size_t i = 0; i < 9; ++i) {
        EXPECT_EQ(dst[i], 1024 * (12 * (i / 3) + 2 * (i % 3)) + 3584); // the block's corner + 3.5
        EXPECT_EQ(dst[9 + i], 1024);
    }
}

TEST(area_average, refuses_what_is_not_smaller_or_outside)
{
    constexpr struct {
        size from, to;
        isp_roi roi;
        uint32_t status;
    } cases[] = {
        {{6, 6}, {6, 3}, {0, 0, 6, 6}, 32},     {{6, 6}, {3, 6}, {0, 0, 6, 6}, 32}, {{6, 6}, {2, 3}, {0, 0, 6, 6}, 32},
        {{6, 6}, {3, 2}, {0, 0, 6, 6}, 32},     {{6, 6}, {3, 3}, {6, 0, 0, 6}, 32}, {{6, 6}, {3, 3}, {0, 6, 6, 0}, 32},
        {{6, 6}, {3, 3}, {1, 0, 6, 6}, 32},     {{6, 6}, {3, 3}, {0, 1, 6, 6}, 32}, {{6, 6}, {3, 3}, {5, 5, 1, 1}, 0},
        {{6, 6}, {3, 3}, {1, 0, 65535, 6}, 32},
    };
    const std::vector<float> src(36, 2.0f);
    for (const auto &c : cases) {
        std::vector<uint16_t> dst(36, untouched);
        const float *src_planes[] = {src.data()};
        uint16_t *dst_planes[] = {dst.data()};
        EXPECT_EQ(image_downscale_32f_to_u16p10(src_planes, dst_planes, c.from.width, c.from.height, c.to.width,
                                                c.to.height, 1, &c.roi),
                  c.status);
        EXPECT_EQ(std::count(dst.begin(), dst.end(), untouched), c.status == 0 ? 27 : 36);
    }
    EXPECT_EQ(image_downscale_32f_to_u16p10(nullptr, nullptr, 6, 6, 3, 3, 0, nullptr), 0u);
}

} // namespace
