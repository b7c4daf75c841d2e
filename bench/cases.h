// The inputs of a frame and of a statistics conversion that are timed.
#pragma once

#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "qz_isp/context.h"
#include "qz_isp/frame.h"

namespace bench {

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

struct statistics_case {
    std::vector<isp_stats_cell> cells;
    isp_stats stats = {};
    isp_context *context = nullptr;
    std::vector<isp_rgbs_cell> rgbs;
    std::vector<uint32_t> filter_1;
    std::vector<uint32_t> filter_2;

    statistics_case(uint32_t width, uint32_t height)
        : cells(width * height), rgbs(width * height), filter_1(width * height), filter_2(width * height)
    {
        uint32_t seed = 1;
        for (isp_stats_cell &cell : cells) {
            for (int32_t &sum : cell.channel_sum)
                sum = static_cast<int32_t>((seed = seed * 1664525 + 1013904223) >> 18);
            cell.count = static_cast<int32_t>(seed >> 28);
        }
        stats.width = width;
        stats.height = height;
        stats.cell_size_exponent = 2;
        stats.bit_depth = 10;
        stats.cells = cells.data();
        uint8_t container[24] = {'V', 'U', 'X', 'B'};
        const isp_blob blob = {container, sizeof container};
        context = qz_isp_2_7_init(&blob, width, height, nullptr, nullptr);
    }
    ~statistics_case() { qz_isp_2_7_deinit(context); }
    statistics_case(const statistics_case &) = delete;
    statistics_case &operator=(const statistics_case &) = delete;

    void convert()
    {
        const rgbs_grid_desc *made_rgbs = nullptr;
        const af_grid_desc *made_af = nullptr;
        qz_isp_2_7_statistics_convert(context, &stats, &made_rgbs, &made_af);
    }
};

} // namespace bench
