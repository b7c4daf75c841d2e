#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <thread>

#include <gtest/gtest.h>

#include "container_builder.h"
#include "qz_isp/context.h"
#include "qz_isp/frame.h"
#include "qz_mkn.h"

namespace {

using test::bytes;

// Values that differ from each other, the same in every run.
bytes varied(size_t count, uint32_t seed)
{
    bytes made(count);
    std::generate(made.begin(), made.end(),
                  [&] { return static_cast<uint8_t>((seed = seed * 1103515245 + 12345) >> 24); });
    return made;
}

// A tuning record for every block, each with two rows.
bytes full_tuning()
{
    bytes all;
    for (const uint16_t offset : std::initializer_list<uint16_t>{1, 2, 3, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}) {
        const bytes one = test::record(320 + offset, test::join({{2, 0}, varied(300, offset)}), 102);
        all.insert(all.end(), one.begin(), one.end());
    }
    for (const uint16_t offset : std::initializer_list<uint16_t>{3, 5, 6, 7, 11, 12, 13}) {
        const bytes one = test::record(768 + offset, test::join({bytes(8), {2, 0, 0, 0}, varied(2400, offset)}));
        all.insert(all.end(), one.begin(), one.end());
    }
    return all;
}

// What the contexts of all threads read: a tuning, a characterisation, statistics and four different frames.
struct shared_inputs {
    bytes container = test::join({test::header(), full_tuning()});
    isp_blob blob = {container.data(), static_cast<uint32_t>(container.size())};
    isp_sensor_description sensor = {{}, 3264, 2448, 10, 0};
    isp_cmc cmc = {nullptr, nullptr, &sensor, nullptr, nullptr};
    std::array<isp_stats_cell, 12> cells = {};
    isp_stats stats = {{}, 4, 3, {}, 16, 2, 10, cells.data()};

    std::array<float, 5> curve = {0.0f, 0.5f, 0.7f, 0.9f, 1.0f};
    std::array<float, 20> grid = {1.5f, 1.2f, 1.0f, 1.2f, 1.6f};
    isp_gamma_params gamma = {{curve.data(), curve.data() + 1, curve.data() + 2}, 3};
    isp_lsc_params lsc = {{grid.data(), grid.data(), grid.data(), grid.data()}, 5, 4, 1, {}};
    isp_frame_desc large = {{{}, 3264, 2448}, 1, 1, 1, 1};
    isp_frame_desc small = {{{}, 640, 480}, 1, 2, 1, 2};
    isp_exposure exposure = {0, 3.0f, 1.5f};
    isp_scene_params scene = {{}, 3000, 0.1f};
    isp_colour_params colour = {
        {1.6f, -0.4f, -0.2f, -0.3f, 1.5f, -0.2f, 0, -0.6f, 1.6f}, {64, 65, 66, 67}, {1.3f, 1, 1, 2.4f}, {}, 1.1f, 0.5f};
    std::array<isp_input_params, 4> frames = {};

    shared_inputs()
    {
        for (size_t i = 0; i < cells.size(); ++i) {
            const auto n = static_cast<int32_t>(i);
            cells[i] = {0, n, {64 * n, 70 * n, 80 * n, 90 * n}, static_cast<uint32_t>(i), 7};
        }
        frames[1].frame = &large;
        frames[1].exposure = &exposure;
        frames[1].scene = &scene;
        frames[1].colour = &colour;
        frames[1].gamma = &gamma;
        frames[1].lsc = &lsc;
        frames[1].gamma_257 = 1;
        frames[1].nr_mode = 2;
        frames[1].nr_strength = 30;
        frames[1].edge_mode = 1;
        frames[1].sharpness = -20;
        frames[1].brightness = 9;
        frames[1].hue = 10;
        frames[2] = frames[1];
        frames[2].frame = &small;
        frames[2].gamma_257 = 0;
        frames[2].effects = 0xc1;
        frames[2].tuning_mode = 3;
        frames[3] = frames[2];
        frames[3].exposure = nullptr;
        frames[3].nr_mode = 0;
        frames[3].edge_mode = 0;
    }
};

const shared_inputs inputs;

class camera {
  public:
    explicit camera(qz_mkn *mkn = qz_mkn_create())
        : mkn_(mkn), context_(qz_isp_2_7_init(&inputs.blob, 4, 4, &inputs.cmc, mkn))
    {}
    ~camera()
    {
        qz_isp_2_7_deinit(context_);
        qz_mkn_destroy(mkn_);
    }
    camera(const camera &) = delete;
    camera &operator=(const camera &) = delete;

    // The bytes of the record in use; table addresses as offsets, the frame's number as 0.
    bytes run(size_t frame)
    {
        isp_output_desc output = {};
        qz_isp_2_7_run(context_, &inputs.frames[frame], &output);
        aic_record record = *output.record;
        record.frame_counter.payload.value = 0;
        for (uint32_t &table : record.lens_shading.payload.table)
            table -= sizeof(void *) == 4 ? static_cast<uint32_t>(reinterpret_cast<uintptr_t>(output.record)) : 0;
        const auto *start = reinterpret_cast<const uint8_t *>(&record);
        return {start, start + output.bytes_used};
    }

    bytes statistics()
    {
        const rgbs_grid_desc *rgbs = nullptr;
        const af_grid_desc *af = nullptr;
        qz_isp_2_7_statistics_convert(context_, &inputs.stats, &rgbs, &af);
        const auto *cells = reinterpret_cast<const uint8_t *>(rgbs->cells);
        bytes made(cells, cells + inputs.cells.size() * sizeof *rgbs->cells);
        made.insert(made.end(), af->filter_1, af->filter_1 + inputs.cells.size());
        return made;
    }

  private:
    qz_mkn *mkn_;
    isp_context *context_;
};

// All that a context gives from init to deinit, starting with one of the frames.
bytes life(size_t first)
{
    camera one;
    bytes all = one.statistics();
    for (size_t i = 0; i < inputs.frames.size(); ++i) {
        const bytes record = one.run((first + i) % inputs.frames.size());
        all.insert(all.end(), record.begin(), record.end());
    }
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

// Puts the bytes of a block's payload, from its offset on, from one record into another.
void take(bytes &record, const bytes &from, size_t offset, size_t count)
{
    std::copy_n(from.begin() + static_cast<ptrdiff_t>(offset), count, record.begin() + static_cast<ptrdiff_t>(offset));
}

TEST(contexts, remember_the_frame_counter_and_gamma_tables_that_a_frame_does_not_write)
{
    constexpr size_t tables[] = {offsetof(aic_record, gamma_0.payload.table),
                                 offsetof(aic_record, gamma_1.payload.table),
                                 offsetof(aic_record, gamma_2.payload.table)};
    for (size_t before = 0; before < inputs.frames.size(); ++before)
        for (size_t frame = 0; frame < inputs.frames.size(); ++frame) {
            camera seasoned, fresh, silent(nullptr);
            const bytes earlier = seasoned.run(before);
            EXPECT_EQ(silent.run(before), earlier);
            bytes expected = fresh.run(frame);
            const isp_input_params &input = inputs.frames[frame];
            const size_t written = input.gamma == nullptr ? 0 : input.gamma_257 != 0 ? 257 : 256;
            for (const size_t table : tables)
                take(expected, earlier, table + 2 * written, 2 * (257 - written));
            EXPECT_EQ(seasoned.run(frame), expected) << before << ' ' << frame;
        }
}

} // namespace
