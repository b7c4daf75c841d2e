#include <array>
#include <thread>

#include <gtest/gtest.h>

#include "qz_isp/context.h"
#include "qz_isp/frame.h"
#include "qz_mkn.h"
#include "tests/container_builder.h"

namespace {

using test::bytes;

// What the contexts of all threads read: a tuning, a characterisation, statistics, a bare frame and a full one.
struct shared_inputs {
    bytes container =
        test::join({test::header(), test::shorts(323, {1, 2, 3}), test::shorts(332, {9, 8, 7, 6, 5, 4, 3, 2, 1, 0, 1}),
                    test::shorts(335, {2, 256, 100, 4096, 900}), test::shorts(326, {2, 256, 1, 2, 4096, 500, 600}),
                    test::long_rows(781, 2, {256, 1, 2, 3, 4, 5, 6, 4096, 90, 80, 70, 60, 50, 40})});
    isp_blob blob = {container.data(), static_cast<uint32_t>(container.size())};
    isp_sensor_description sensor = {{}, 3264, 2448, 10, 0};
    isp_cmc cmc = {nullptr, nullptr, &sensor, nullptr, nullptr};
    std::array<isp_stats_cell, 12> cells = {{{0, 9, {64, 70, 80, 90}, 5, 7}}};
    isp_stats stats = {{}, 4, 3, {}, 16, 2, 10, cells.data()};

    std::array<float, 20> values = {1.5f, 1.2f, 1.0f, 1.2f, 1.6f};
    isp_gamma_params gamma = {{values.data(), values.data() + 1, values.data() + 2}, 3};
    isp_lsc_params lsc = {{values.data(), values.data(), values.data(), values.data()}, 5, 4, 1, {}};
    isp_frame_desc frame = {{{}, 3264, 2448}, 1, 1, 1, 1};
    isp_exposure exposure = {0, 3.0f, 1.5f};
    isp_scene_params scene = {{}, 3000, 0.1f};
    isp_colour_params colour = {{1.6f, -0.4f, -0.2f}, {64, 65, 66, 67}, {1.3f, 1, 1, 2.4f}, {}, 1.1f, 0.5f};
    std::array<isp_input_params, 2> frames = {};

    shared_inputs()
    {
        isp_input_params &full = frames[1];
        full.frame = &frame;
        full.exposure = &exposure;
        full.scene = &scene;
        full.colour = &colour;
        full.gamma = &gamma;
        full.lsc = &lsc;
        full.effects = 0xc1;
        full.nr_mode = full.edge_mode = 2;
        full.brightness = full.contrast = full.hue = full.saturation = full.nr_strength = full.sharpness = 9;
    }
};

const shared_inputs inputs;

// All that a context gives from init to deinit, starting with one of the frames: its statistics and the records in use,
// with table addresses as offsets.
bytes life(size_t first)
{
    qz_mkn *mkn = qz_mkn_create();
    isp_context *context = qz_isp_2_7_init(&inputs.blob, 4, 4, &inputs.cmc, mkn);
    const rgbs_grid_desc *rgbs = nullptr;
    const af_grid_desc *af = nullptr;
    qz_isp_2_7_statistics_convert(context, &inputs.stats, &rgbs, &af);
    const auto *cells = reinterpret_cast<const uint8_t *>(rgbs->cells);
    bytes all(cells, cells + inputs.cells.size() * sizeof *rgbs->cells);
    for (size_t i = 0; i < inputs.frames.size(); ++i) {
        isp_output_desc output = {};
        qz_isp_2_7_run(context, &inputs.frames[(first + i) % inputs.frames.size()], &output);
        aic_record record = *output.record;
        for (uint32_t &table : record.lens_shading.payload.table)
            table -= sizeof(void *) == 4 ? static_cast<uint32_t>(reinterpret_cast<uintptr_t>(output.record)) : 0;
        const auto *start = reinterpret_cast<const uint8_t *>(&record);
        all.insert(all.end(), start, start + output.bytes_used);
    }
    qz_isp_2_7_deinit(context);
    qz_mkn_destroy(mkn);
    return all;
}

TEST(contexts, of_two_threads_share_nothing_that_changes)
{
    const bytes expected[] = {life(0), life(1)};
    EXPECT_NE(expected[0], expected[1]);
    int different[] = {0, 0};
    const auto work = [&](size_t thread) {
        for (int n = 0; n < 20; ++n)
            different[thread] += life(thread) != expected[thread];
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    EXPECT_EQ(different[0], 0);
    EXPECT_EQ(different[1], 0);
}

} // namespace
