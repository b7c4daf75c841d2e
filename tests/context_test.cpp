#include <array>
#include <string>

#include <gtest/gtest.h>

#include "tests/camera.h"

namespace {

using test::camera;

TEST(context, regions_follow_each_other_without_gaps)
{
    const camera one({}, 3, 5);
    const isp_context *context = one.context;
    ASSERT_NE(context, nullptr);
    const auto at = [&](const void *address) {
        return static_cast<const uint8_t *>(address) - reinterpret_cast<const uint8_t *>(context);
    };
    const ptrdiff_t header = sizeof(void *) == 4 ? 56 : 104;
    const ptrdiff_t rgbs = header + 208;
    const auto cells = rgbs + static_cast<ptrdiff_t>(sizeof(rgbs_grid_desc));
    const auto af = cells + 80;
    const auto filter_1 = af + static_cast<ptrdiff_t>(sizeof(af_grid_desc));
    EXPECT_EQ(at(context->cmc), header);
    EXPECT_EQ(at(context->rgbs_grid), rgbs);
    EXPECT_EQ(at(context->rgbs_grid->cells), cells);
    EXPECT_EQ(at(context->af_grid), af);
    EXPECT_EQ(at(context->af_grid->filter_1), filter_1);
    EXPECT_EQ(at(context->af_grid->filter_2), filter_1 + 64);
    EXPECT_EQ(at(context->mkn_key), filter_1 + 128);
    EXPECT_EQ(at(context->aic_output), filter_1 + 128 + 24);
    if (sizeof(void *) == 4) {
        EXPECT_EQ(at(context->aic_output) + AIC_RECORD_SIZE, 35808);
    }
    EXPECT_EQ(std::strlen(context->mkn_key), 16u);
    EXPECT_EQ(isp_get_aic_output_size_2_7(), sizeof(aic_record));
}

TEST(context, version_record_comes_first_even_when_the_container_is_bad)
{
    testing::internal::CaptureStderr();
    const camera one(test::record(320, test::bytes(1)));
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "qz[1] QZ ISP 2.7 VERSION v2.0_012.000_002\n");
    EXPECT_EQ(one.context, nullptr);
    qz_mkn_record record = {};
    ASSERT_TRUE(qz_mkn_get_record(one.mkn, 0, &record));
    EXPECT_EQ(record.format, 9u);
    EXPECT_EQ(record.name, 538u);
    EXPECT_EQ(std::string(static_cast<const char *>(record.data), record.count), "QZ_ISP 2.6.1 v2.0_012.000_002");
    ASSERT_NE(record.key, nullptr);
    EXPECT_EQ(std::strlen(record.key), 16u);
}

TEST(context, grids_that_cannot_be_allocated_give_no_context)
{
    if (sizeof(void *) == 4) {
        EXPECT_EQ(camera({}, 0x40000000, 1).context, nullptr);
        EXPECT_EQ(camera({}, 0x20000000, 3).context, nullptr);
    }
    EXPECT_NE(camera({}, 0, 0).context, nullptr);
    EXPECT_NE(camera({}, 0x10000, 0x10000).context, nullptr); // the product wraps to no cells
}

TEST(context, deinit_accepts_null)
{
    qz_isp_2_7_deinit(nullptr);
    isp_parse_deinit(nullptr);
    cmc_deinit(nullptr);
}

TEST(characterisation, copies_what_is_read_and_nothing_else)
{
    camera one;
    const isp_cmc &copy = *one.context->cmc;
    EXPECT_NE(copy.sensor_description, one.cmc.sensor_description);
    EXPECT_EQ(std::memcmp(copy.sensor_description, one.cmc.sensor_description, 16), 0);
    EXPECT_EQ(std::memcmp(copy.entry_table_header, one.cmc.entry_table_header, 12), 0);
    EXPECT_EQ(std::memcmp(copy.entry_table, one.cmc.entry_table, 32), 0);

    isp_cmc all = one.cmc; // the first two are left out
    all.cmc_field_0 = all.cmc_field_1 = &all;
    isp_cmc second = {};
    copy_cmc(&second, &all);
    EXPECT_EQ(second.cmc_field_0, nullptr);
    EXPECT_EQ(second.cmc_field_1, nullptr);
    cmc_deinit(&second);
    for (const void *part :
         {static_cast<const void *>(second.sensor_description), static_cast<const void *>(second.entry_table_header),
          static_cast<const void *>(second.entry_table)})
        EXPECT_EQ(part, nullptr);
}

TEST(characterisation, missing_parts_stay_null)
{
    isp_entry_table_header header = {{}, 2};
    isp_cmc copy = {};
    const isp_cmc without_table = {nullptr, nullptr, nullptr, &header, nullptr};
    copy_cmc(&copy, &without_table);
    EXPECT_EQ(copy.sensor_description, nullptr);
    EXPECT_NE(copy.entry_table_header, nullptr);
    EXPECT_EQ(copy.entry_table, nullptr);
    cmc_deinit(&copy);
    header.entry_count = 0;
    const isp_cmc empty_table = {nullptr, nullptr, nullptr, &header, nullptr};
    copy_cmc(&copy, &empty_table);
    EXPECT_NE(copy.entry_table_header, nullptr);
    EXPECT_NE(copy.entry_table, nullptr); // a block of no entries
    cmc_deinit(&copy);
    copy_cmc(&copy, nullptr);
    EXPECT_EQ(copy.entry_table_header, nullptr);
}

isp_stats stats_of(uint32_t width, uint32_t height, uint32_t exponent, uint32_t depth, const isp_stats_cell *cells)
{
    isp_stats stats = {};
    stats.width = width;
    stats.height = height;
    stats.af_block_size = 0x10007;
    stats.cell_size_exponent = exponent;
    stats.bit_depth = depth;
    stats.cells = cells;
    return stats;
}

TEST(statistics, averages_round_half_up_and_saturate)
{
    struct expectation {
        uint32_t exponent, depth;
        int32_t sum, count;
        uint8_t average, saturation;
    };
    for (const auto &[exponent, depth, sum, count, average, saturation] :
         {expectation{2, 10, 16368, 0, 255, 255},
          {2, 10, 8192, 0, 128, 255},
          {2, 10, 31, 16, 0, 0},
          {2, 10, 32, 15, 1, 15},
          {2, 10, 95, 8, 1, 127},
          {2, 10, 96, 0, 2, 255},
          {2, 10, 0x7fffffff, 0, 0, 255},
          {2, 10, -64, 0, 255, 255},
          {0, 9, 3, 0, 2, 255},
          {0, 39, 0x3fffffff, 0, 0, 255},
          {0, 39, 0x40000000, 0, 255, 255},
          {5, 10, 0x80000, -0x10000, 128, 191}}) { // 66560 x 255 / 1024 = 16575
        const camera one;
        const isp_stats_cell cell = {0, count, {sum, 0, 0, 0}, 5, 6};
        const isp_stats stats = stats_of(1, 1, exponent, depth, &cell);
        const rgbs_grid_desc *rgbs = nullptr;
        const af_grid_desc *af = nullptr;
        ASSERT_EQ(qz_isp_2_7_statistics_convert(one.context, &stats, &rgbs, &af), ISP_SUCCESS);
        EXPECT_EQ(rgbs->cells[0].average[0], average) << sum;
        EXPECT_EQ(rgbs->cells[0].saturation, saturation) << count;
    }
}

TEST(statistics, cells_land_in_their_places)
{
    std::array<isp_stats_cell, 14> cells = {};
    for (size_t i = 0; i < cells.size(); ++i) {
        const auto n = static_cast<int32_t>(i);
        cells[i] = {0xdead,
                    n,
                    {64 * n, 64 * (n + 20), 64 * (n + 40), 64 * (n + 60)},
                    static_cast<uint32_t>(1000 + n),
                    static_cast<uint32_t>(2000 + n)};
    }
    const camera one({}, 4, 4);
    const isp_stats stats = stats_of(7, 2, 2, 10, cells.data());
    const rgbs_grid_desc *rgbs = nullptr;
    const af_grid_desc *af = nullptr;
    ASSERT_EQ(qz_isp_2_7_statistics_convert(one.context, &stats, &rgbs, &af), ISP_SUCCESS);
    EXPECT_EQ(rgbs, one.context->rgbs_grid);
    EXPECT_EQ(rgbs->width, 7);
    EXPECT_EQ(af->height, 2);
    EXPECT_EQ(af->block_width, 7);
    EXPECT_EQ(af->block_height, 7);
    for (size_t i = 0; i < cells.size(); ++i) {
        for (size_t k = 0; k < 4; ++k)
            EXPECT_EQ(rgbs->cells[i].average[k], i + 20 * k);
        EXPECT_EQ(rgbs->cells[i].saturation, (16 - i) * 255 / 16);
        EXPECT_EQ(af->filter_1[i], 1000 + i);
        EXPECT_EQ(af->filter_2[i], 2000 + i);
    }
    EXPECT_EQ(rgbs->cells[14].saturation, 0);
    EXPECT_EQ(af->filter_1[14], 0u);
}

TEST(statistics, what_cannot_be_converted_writes_nothing)
{
    const camera one({}, 2, 2);
    std::array<isp_stats_cell, 5> cells = {};
    const rgbs_grid_desc *rgbs = nullptr;
    const af_grid_desc *af = nullptr;
    for (const isp_stats &bad :
         {stats_of(5, 1, 2, 10, cells.data()), stats_of(1, 1, 0, 8, cells.data()), stats_of(1, 1, 0, 40, cells.data()),
          stats_of(1, 1, 0x80000000, 10, cells.data()), stats_of(1, 1, 16, 1, cells.data()),
          stats_of(1, 1, 2, 0xffffffff, cells.data()), stats_of(1, 1, 2, 10, nullptr)}) {
        EXPECT_EQ(qz_isp_2_7_statistics_convert(one.context, &bad, &rgbs, &af), ISP_INVALID_DATA);
        EXPECT_EQ(one.context->rgbs_grid->width, 0);
        EXPECT_EQ(rgbs, nullptr);
    }
    const isp_stats good = stats_of(0x10001, 0x10004, 2, 10, cells.data()); // the low 16 bits count
    EXPECT_EQ(qz_isp_2_7_statistics_convert(one.context, &good, &rgbs, nullptr), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(one.context, &good, nullptr, &af), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(one.context, nullptr, &rgbs, &af), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(nullptr, &good, &rgbs, &af), ISP_INVALID_DATA);
    isp_context bare = {};
    EXPECT_EQ(qz_isp_2_7_statistics_convert(&bare, &good, &rgbs, &af), ISP_INVALID_DATA);
    bare.rgbs_grid = one.context->rgbs_grid;
    EXPECT_EQ(qz_isp_2_7_statistics_convert(&bare, &good, &rgbs, &af), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(one.context, &good, &rgbs, &af), ISP_SUCCESS);
    EXPECT_EQ(rgbs->width, 1);
    EXPECT_EQ(af->height, 4);
    const std::vector<isp_stats_cell> many(0x8001);
    for (const auto &[width, height] : {std::pair{0x8001u, 1u}, {1u, 0x8001u}}) {
        const camera wide({}, width, height);
        const isp_stats stats = stats_of(width, height, 2, 10, many.data());
        EXPECT_EQ(qz_isp_2_7_statistics_convert(wide.context, &stats, &rgbs, &af), ISP_SUCCESS);
        EXPECT_EQ(rgbs->cells[0x8000].saturation, 255);
    }
    const isp_stats empty = stats_of(0, 4, 0, 0, nullptr); // no cell to scale
    EXPECT_EQ(qz_isp_2_7_statistics_convert(one.context, &empty, &rgbs, &af), ISP_SUCCESS);
    EXPECT_EQ(rgbs->width, 0);
}

} // namespace
