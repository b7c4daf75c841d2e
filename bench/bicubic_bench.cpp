#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/images.h"
#include "bench/subjects.h"
#include "qz_isp/bicubic.h"

#ifdef QZ_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace bench {

namespace {

struct narrow_sizes {
    uint16_t src_width, src_height, dst_width, dst_height;

    explicit narrow_sizes(const sizes &s)
        : src_width(static_cast<uint16_t>(s.src_width)), src_height(static_cast<uint16_t>(s.src_height)),
          dst_width(static_cast<uint16_t>(s.dst_width)), dst_height(static_cast<uint16_t>(s.dst_height))
    {}
};

// Source and destination of different sample types, gains of 0.5 to 4 where they are floats.
template <typename From, typename To>
struct planes {
    explicit planes(const sizes &s)
        : source(static_cast<size_t>(s.src_width) * static_cast<size_t>(s.src_height)),
          ours(static_cast<size_t>(s.dst_width) * static_cast<size_t>(s.dst_height)), theirs(ours.size())
    {
        uint32_t state = 1;
        for (From &sample : source) {
            state = state * 1664525u + 1013904223u;
            if constexpr (std::is_same_v<From, float>)
                sample = 0.5f + static_cast<float>(state >> 16) * (3.5f / 65536.0f);
            else
                sample = static_cast<From>(state >> 16);
        }
    }

    std::vector<From> source;
    std::vector<To> ours, theirs;
};

using gains = planes<float, uint16_t>;

#ifdef QZ_BENCH_OPENCV
std::vector<peer> opencv_to_p10(const char *name, double at_most, const sizes &s, const std::shared_ptr<gains> &all,
                                int method)
{
    const cv::Mat source(s.src_height, s.src_width, CV_32F, all->source.data());
    const cv::Mat destination(s.dst_height, s.dst_width, CV_16U, all->theirs.data());
    const cv::Mat between(s.dst_height, s.dst_width, CV_32F);
    return {{name, at_most, [=] {
                 cv::Mat resized = between;
                 cv::Mat out = destination;
                 cv::resize(source, resized, resized.size(), 0, 0, method);
                 resized.convertTo(out, CV_16U, 1024.0);
             }}};
}

template <typename Sample>
std::vector<peer> opencv_to_float(const sizes &s, const std::shared_ptr<planes<Sample, float>> &all)
{
    const int type = cv::DataType<Sample>::type;
    const cv::Mat source(s.src_height, s.src_width, type, all->source.data());
    const cv::Mat destination(s.dst_height, s.dst_width, CV_32F, all->theirs.data());
    const cv::Mat floats(s.src_height, s.src_width, CV_32F);
    const cv::Mat resized(s.dst_height, s.dst_width, type);
    return {{"OpenCV convert, cubic", 1.0,
             [=] {
                 cv::Mat converted = floats;
                 cv::Mat out = destination;
                 source.convertTo(converted, CV_32F);
                 cv::resize(converted, out, out.size(), 0, 0, cv::INTER_CUBIC);
             }},
            {"OpenCV cubic, convert", 1.0, [=] {
                 cv::Mat between = resized;
                 cv::Mat out = destination;
                 cv::resize(source, between, between.size(), 0, 0, cv::INTER_CUBIC);
                 between.convertTo(out, CV_32F);
             }}};
}
#endif

void compare_area(const sizes &s, double at_most)
{
    const auto all = std::make_shared<gains>(s);
    std::vector<peer> peers;
#ifdef QZ_BENCH_OPENCV
    peers = opencv_to_p10("OpenCV area", at_most, s, all, cv::INTER_AREA);
#endif
    compare(
        "image_downscale_32f_to_u16p10", s.name(),
        [all, n = narrow_sizes(s)] {
            const float *source = all->source.data();
            uint16_t *out = all->ours.data();
            image_downscale_32f_to_u16p10(&source, &out, n.src_width, n.src_height, n.dst_width, n.dst_height, 1,
                                          nullptr);
        },
        std::move(peers));
}

void compare_resize(const sizes &s, double at_most)
{
    const auto all = std::make_shared<gains>(s);
    std::vector<peer> peers;
#ifdef QZ_BENCH_OPENCV
    peers = opencv_to_p10("OpenCV cubic", at_most, s, all, cv::INTER_CUBIC);
#endif
    compare(
        "bicubic_resize_32f_to_u16p10", s.name(),
        [all, n = narrow_sizes(s)] {
            bicubic_resize_32f_to_u16p10(all->source.data(), n.src_height, n.src_width, all->ours.data(), n.dst_height,
                                         n.dst_width);
        },
        std::move(peers));
}

template <typename Sample, typename Upscale>
void compare_upscale(const char *routine, const sizes &s, Upscale upscale)
{
    const auto all = std::make_shared<planes<Sample, float>>(s);
    std::vector<peer> peers;
#ifdef QZ_BENCH_OPENCV
    peers = opencv_to_float<Sample>(s, all);
#endif
    compare(
        routine, s.name(),
        [all, upscale, n = narrow_sizes(s)] {
            const Sample *source = all->source.data();
            float *out = all->ours.data();
            upscale(&source, &out, n.src_width, n.src_height, n.dst_width, n.dst_height, uint16_t{1});
        },
        std::move(peers));
}

} // namespace

void register_bicubic()
{
    for (const sizes &s : {sizes{128, 96, 27, 21}, {640, 480, 64, 48}, {1920, 1080, 480, 270}})
        compare_area(s, 0.6);
    for (const sizes &s : {sizes{640, 480, 320, 240}, {1920, 1080, 960, 540}})
        compare_area(s, 1.2); // the others have kernels of their own for exact halves
    compare_resize({17, 13, 27, 21}, 0.65);
    compare_resize({63, 47, 31, 18}, 1.0);
    compare_resize({64, 48, 640, 480}, 1.5);
    for (const sizes &s : {sizes{17, 13, 27, 21}, {64, 48, 640, 480}, {320, 240, 1280, 960}}) {
        compare_upscale<uint8_t>("image_bicubic_upscale_uint8_to_float", s, image_bicubic_upscale_uint8_to_float);
        compare_upscale<uint16_t>("image_bicubic_upscale_uint16_to_float", s, image_bicubic_upscale_uint16_to_float);
    }
}

} // namespace bench
