#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "bench/compare.h"
#include "bench/images.h"
#include "bench/subjects.h"
#include "qz_isp/table_resize.h"

#ifdef QZ_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif
#ifdef QZ_BENCH_LIBYUV
#include <libyuv.h>
#endif

namespace bench {

namespace {

#ifdef QZ_BENCH_OPENCV
template <typename T>
peer opencv_linear(const sizes &s, const std::shared_ptr<images<T>> &all)
{
    const cv::Mat source(s.src_height, s.src_width, cv::DataType<T>::type, all->source.data());
    const cv::Mat destination(s.dst_height, s.dst_width, cv::DataType<T>::type, all->theirs.data());
    return {"OpenCV linear", 1.0, [all, source, destination] {
                cv::Mat out = destination;
                cv::resize(source, out, out.size(), 0, 0, cv::INTER_LINEAR);
            }};
}
#endif

#ifdef QZ_BENCH_LIBYUV
double libyuv_target(const sizes &s)
{
    return s.doubling() ? 1.4 : 1.0; // it has kernels of their own for exact doubling
}

void add_libyuv(std::vector<peer> &peers, const sizes &s, const std::shared_ptr<images<uint8_t>> &all)
{
    peers.push_back({"libyuv bilinear", libyuv_target(s), [s, all] {
                         libyuv::ScalePlane(all->source.data(), s.src_width, s.src_width, s.src_height,
                                            all->theirs.data(), s.dst_width, s.dst_width, s.dst_height,
                                            libyuv::kFilterBilinear);
                     }});
}

void add_libyuv(std::vector<peer> &peers, const sizes &s, const std::shared_ptr<images<uint16_t>> &all)
{
    peers.push_back({"libyuv bilinear", libyuv_target(s), [s, all] {
                         libyuv::ScalePlane_16(all->source.data(), s.src_width, s.src_width, s.src_height,
                                               all->theirs.data(), s.dst_width, s.dst_width, s.dst_height,
                                               libyuv::kFilterBilinear);
                     }});
}

void add_libyuv(std::vector<peer> & /*peers*/, const sizes & /*s*/, const std::shared_ptr<images<float>> & /*all*/) {}
#endif

template <typename T, typename Resize>
void compare_resize(const std::string &routine, const sizes &s, Resize resize)
{
    const auto all = std::make_shared<images<T>>(s);
    std::vector<peer> peers;
#ifdef QZ_BENCH_OPENCV
    peers.push_back(opencv_linear<T>(s, all));
#endif
#ifdef QZ_BENCH_LIBYUV
    add_libyuv(peers, s, all);
#endif
    compare(
        routine, s.name(), [s, all, resize] { resize(s, all->source.data(), all->ours.data()); }, std::move(peers));
}

// Curves of a gamma table's sizes.
void time_one_dimensional(int src_count, int dst_count)
{
    const std::string size = std::to_string(src_count) + "->" + std::to_string(dst_count);
    const auto curve = std::make_shared<std::vector<float>>(src_count);
    const auto table = std::make_shared<std::vector<uint16_t>>(dst_count);
    const auto tables = std::make_shared<images<uint16_t>>(sizes{src_count, 2, 2, 2});
    const auto mixed = std::make_shared<std::vector<float>>(dst_count);
    for (int i = 0; i < src_count; ++i)
        (*curve)[static_cast<size_t>(i)] = static_cast<float>(i) / static_cast<float>(src_count);
    compare("isp_resize_1d_array_uint16", size,
            [=] { isp_resize_1d_array_uint16(curve->data(), src_count, 1000, table->data(), dst_count); });
    compare("resize_and_mix_1d_array_uint16", size, [=] {
        resize_and_mix_1d_array_uint16(tables->source.data(), src_count, tables->source.data() + src_count, 300, 1000,
                                       mixed->data(), dst_count);
    });
}

} // namespace

void register_table_resize()
{
    time_one_dimensional(17, 257);
    time_one_dimensional(1024, 4096);
    for (const sizes &s : two_dimensional) {
        compare_resize<uint8_t>("resize_2d_array_uint8", s, [](const sizes &z, const uint8_t *src, uint8_t *dst) {
            resize_2d_array_uint8(src, z.src_width, z.src_height, dst, z.dst_width, z.dst_height);
        });
        compare_resize<uint16_t>("resize_2d_array_uint16", s, [](const sizes &z, const uint16_t *src, uint16_t *dst) {
            resize_2d_array_uint16(src, z.src_width, z.src_height, dst, z.dst_width, z.dst_height);
        });
        compare_resize<float>("resize_2d_array_float", s, [](const sizes &z, const float *src, float *dst) {
            resize_2d_array_float(src, static_cast<uint16_t>(z.src_width), z.src_height, dst,
                                  static_cast<uint16_t>(z.dst_width), z.dst_height);
        });
        const auto all = std::make_shared<images<uint32_t>>(s);
        compare("resize_2d_array_uint32", s.name(), [s, all] {
            resize_2d_array_uint32(all->source.data(), s.src_width, s.src_height, all->ours.data(), s.dst_width,
                                   s.dst_height);
        });
    }
}

} // namespace bench
