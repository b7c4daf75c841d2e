#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include "bench/cases.h"
#include "bench/compare.h"
#include "bench/subjects.h"

#ifdef QZ_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace bench {

namespace {

// What the busy parts of a frame cost in other libraries: a power for each gamma entry's brightness and contrast, and
// the resize of four shading grids.
struct general_purpose_frame {
    camera &one;
    std::vector<float> powers = std::vector<float>(2 * 3 * 257);
    std::vector<float> resized = std::vector<float>(27 * 21);

    explicit general_purpose_frame(camera &of) : one(of) {}

    void run()
    {
        one.copy_record();
        for (size_t i = 0; i < powers.size(); ++i)
            powers[i] = std::pow(static_cast<float>(i % 257) / 256.0f, 0.88f);
#ifdef QZ_BENCH_OPENCV
        for (auto &grid : one.grids) {
            const cv::Mat source(13, 17, CV_32FC1, grid.data());
            cv::Mat destination(21, 27, CV_32FC1, resized.data());
            cv::resize(source, destination, destination.size(), 0, 0, cv::INTER_CUBIC);
        }
#endif
    }
};

} // namespace

void register_frame()
{
    const auto bare = std::make_shared<camera>();
    compare("qz_isp_2_7_run", "bare", [=] { bare->run(); },
            {{"copying the record", 2.0, [=] { bare->copy_record(); }}});

    const auto full = std::make_shared<camera>();
    full->switch_everything_on();
    std::vector<peer> peers;
#ifdef QZ_BENCH_OPENCV
    const auto general = std::make_shared<general_purpose_frame>(*full);
    peers.push_back({"copy + 1542 powf + OpenCV cubic", 0.85, [=] { general->run(); }});
#endif
    compare(
        "qz_isp_2_7_run", "everything on", [=] { full->run(); }, peers);
}

} // namespace bench
