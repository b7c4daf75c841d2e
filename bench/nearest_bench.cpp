#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/images.h"
#include "bench/plain_loops.h"
#include "bench/subjects.h"
#include "qz_isp/nearest.h"

#ifdef QZ_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace bench {

namespace {

template <typename T>
std::vector<peer> opencv_nearest([[maybe_unused]] int type, [[maybe_unused]] const sizes &s,
                                 [[maybe_unused]] const std::shared_ptr<images<T>> &all)
{
#ifdef QZ_BENCH_OPENCV
    const cv::Mat source(s.src_height, s.src_width, type, all->source.data());
    const cv::Mat destination(s.dst_height, s.dst_width, type, all->theirs.data());
    return {{"OpenCV nearest", 0.6, [all, source, destination] {
                 cv::Mat out = destination;
                 cv::resize(source, out, out.size(), 0, 0, cv::INTER_NEAREST);
             }}};
#else
    return {};
#endif
}

#ifndef QZ_BENCH_OPENCV
constexpr int CV_16UC1 = 2, CV_32SC1 = 4;
#endif

void compare_picking(const sizes &s)
{
    const auto words = std::make_shared<images<uint32_t>>(s);
    compare(
        "image_nearest_neighbor_scale_uint32", s.name(),
        [=] {
            image_nearest_neighbor_scale_uint32(words->source.data(), s.src_width, s.src_height, words->ours.data(),
                                                s.dst_width, s.dst_height);
        },
        opencv_nearest(CV_32SC1, s, words));

    const auto halves = std::make_shared<images<uint16_t>>(s);
    const auto sw = static_cast<uint16_t>(s.src_width);
    const auto sh = static_cast<uint16_t>(s.src_height);
    const auto dw = static_cast<uint16_t>(s.dst_width);
    const auto dh = static_cast<uint16_t>(s.dst_height);
    compare(
        "image_upscale_nearest_neighbor_uint16", s.name(),
        [=] { image_upscale_nearest_neighbor_uint16(halves->source.data(), halves->ours.data(), sw, sh, dw, dh); },
        opencv_nearest(CV_16UC1, s, halves));

    const auto numbers = std::make_shared<images<int32_t>>(s);
    compare(
        "image_downscale_nearest_neighbor_int32", s.name(),
        [=] {
            image_downscale_nearest_neighbor_int32(numbers->source.data(), numbers->ours.data(), sw, sh, dw, dh, 0);
        },
        opencv_nearest(CV_32SC1, s, numbers));
}

// Ceiling rule, in whole numbers.
std::vector<int> block_ends(int src_size, int dst_size)
{
    std::vector<int> ends;
    for (int k = 1; k <= dst_size; ++k)
        ends.push_back((k * src_size + dst_size - 1) / dst_size);
    return ends;
}

void compare_maximum(const sizes &s)
{
    const auto all = std::make_shared<images<int32_t>>(s);
    const auto rows = block_ends(s.src_height, s.dst_height);
    const auto columns = block_ends(s.src_width, s.dst_width);
    compare("image_downscale_.._int32, maximum", s.name(),
            [=] {
                image_downscale_nearest_neighbor_int32(
                    all->source.data(), all->ours.data(), static_cast<uint16_t>(s.src_width),
                    static_cast<uint16_t>(s.src_height), static_cast<uint16_t>(s.dst_width),
                    static_cast<uint16_t>(s.dst_height), 1);
            },
            {{"plain loop", 0.5, [=] {
                  plain_block_maxima(all->source.data(), s.src_width, all->theirs.data(), s.dst_width, s.dst_height,
                                     rows.data(), columns.data());
              }}});
}

} // namespace

void register_nearest()
{
    for (const sizes &s : two_dimensional) {
        compare_picking(s);
        compare_maximum(s);
    }
    compare_maximum({1920, 1080, 240, 135});
}

} // namespace bench
