#include <array>
#include <cmath>
#include <cstring>
#include <memory>
#include <vector>

#include "compare.h"
#include "qz_isp/context.h"
#include "qz_isp/frame.h"
#include "subjects.h"

#ifdef QZ_BENCH_OPENCV
#include <opencv2/imgproc.hpp>
#endif

namespace bench {

namespace {

// A camera without tuning records, the inputs of a frame, and a buffer to copy the record to.
struct camera {
    isp_context *context = nullptr;
    isp_input_params input = {};
    isp_output_desc output = {};
    isp_sensor_description sensor = {{}, 3264, 2448, 10, 0};
    std::vector<uint8_t> copy = std::vector<uint8_t>(AIC_RECORD_SIZE);

    std::array<std::array<float, 32>, 3> curves = {};
    std::array<std::array<float, 17 * 13>, 4> grids = {};
    isp_gamma_params gamma = {};
    isp_lsc_params lsc = {};
    isp_frame_desc frame = {{{}, 3264, 2448}, 1, 1, 1, 1};
    isp_exposure exposure = {0, 2.0f, 1.5f};
    isp_scene_params scene = {};
    isp_colour_params colour = {};

    camera()
    {
        uint8_t container[24] = {'V', 'U', 'X', 'B'};
        const isp_blob blob = {container, sizeof container};
        const isp_cmc cmc = {nullptr, nullptr, &sensor, nullptr, nullptr};
        context = qz_isp_2_7_init(&blob, 1, 1, &cmc, nullptr);
    }
    ~camera() { qz_isp_2_7_deinit(context); }
    camera(const camera &) = delete;
    camera &operator=(const camera &) = delete;

    void switch_everything_on()
    {
        for (size_t c = 0; c < 3; ++c) {
            for (size_t i = 0; i < curves[c].size(); ++i)
                curves[c][i] = std::pow(static_cast<float>(i) / 31.0f, 0.4f + 0.02f * static_cast<float>(c));
            gamma.curve[c] = curves[c].data();
        }
        gamma.point_count = 32;
        for (size_t c = 0; c < 4; ++c) {
            for (size_t i = 0; i < grids[c].size(); ++i) {
                const float x = static_cast<float>(i % 17) / 8.0f - 1.0f;
                const float y = static_cast<float>(i / 17) / 6.0f - 1.0f;
                grids[c][i] = 1.0f + (0.7f + 0.01f * static_cast<float>(c)) * (x * x + y * y);
            }
            lsc.grid[c] = grids[c].data();
        }
        lsc.width = 17;
        lsc.height = 13;
        lsc.enable = 1;
        colour = {{1.6f, -0.4f, -0.2f, -0.3f, 1.5f, -0.2f, 0.0f, -0.6f, 1.6f},
                  {64, 64, 64, 64},
                  {1, 1.8f, 1.5f, 1},
                  {},
                  1.0f,
                  0.5f};
        input.frame = &frame;
        input.exposure = &exposure;
        input.scene = &scene;
        input.gamma = &gamma;
        input.colour = &colour;
        input.lsc = &lsc;
        input.gamma_257 = 1;
        input.nr_mode = 2;
        input.edge_mode = 1;
        input.brightness = 20;
        input.contrast = 20;
    }

    void run() { qz_isp_2_7_run(context, &input, &output); }
    void copy_record() { std::memcpy(copy.data(), context->aic_output, copy.size()); }
};

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
    peers.push_back({"copy + 1542 powf + OpenCV cubic", 1.0, [=] { general->run(); }});
#endif
    compare(
        "qz_isp_2_7_run", "everything on", [=] { full->run(); }, peers);
}

} // namespace bench
