#include <array>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "container_builder.h"
#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_mkn.h"

namespace {

using test::container;

struct context_deleter {
    void operator()(isp_context *context) const { qz_isp_2_7_deinit(context); }
};
using context_ptr = std::unique_ptr<isp_context, context_deleter>;

context_ptr make_context(uint32_t width, uint32_t height, const isp_cmc *cmc = nullptr)
{
    container empty({});
    return context_ptr(qz_isp_2_7_init(empty.blob(), width, height, cmc, nullptr));
}

TEST(context, regions_follow_each_other_without_gaps)
{
    const context_ptr context = make_context(3, 5);
    ASSERT_NE(context, nullptr);
    const auto at = [&](const void *address) {
        return static_cast<const uint8_t *>(address) - reinterpret_cast<const uint8_t *>(context.get());
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
        EXPECT_EQ(at(context->aic_output) + 35288, 35808);
    }
    EXPECT_EQ(std::strlen(context->mkn_key), 16u);
    EXPECT_EQ(isp_get_aic_output_size_2_7(), 35288u);
}

TEST(context, version_record_comes_first_even_when_the_container_is_bad)
{
    qz_mkn *mkn = qz_mkn_create();
    container bad({test::record(320, test::bytes(1))});
    EXPECT_EQ(qz_isp_2_7_init(bad.blob(), 1, 1, nullptr, mkn), nullptr);
    qz_mkn_record record = {};
    ASSERT_TRUE(qz_mkn_get_record(mkn, 0, &record));
    EXPECT_EQ(record.format, 9u);
    EXPECT_EQ(record.name, 538u);
    EXPECT_EQ(std::string(static_cast<const char *>(record.data), record.count), "QZ_ISP 2.6.1 v2.0_012.000_002");
    ASSERT_NE(record.key, nullptr);
    EXPECT_EQ(std::strlen(record.key), 16u);
    qz_mkn_destroy(mkn);
}

TEST(context, version_is_logged)
{
    testing::internal::CaptureStderr();
    make_context(1, 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "qz[1] QZ ISP 2.7 VERSION v2.0_012.000_002\n");
}

TEST(context, grids_that_cannot_be_allocated_give_no_context)
{
    if (sizeof(void *) == 4) {
        EXPECT_EQ(make_context(0x40000000, 1), nullptr);
        EXPECT_EQ(make_context(0x20000000, 3), nullptr);
    }
    EXPECT_NE(make_context(0, 0), nullptr);
    EXPECT_NE(make_context(0x10000, 0x10000), nullptr); // the product wraps to no cells
}

TEST(context, deinit_accepts_null)
{
    qz_isp_2_7_deinit(nullptr);
    isp_parse_deinit(nullptr);
    cmc_deinit(nullptr);
}

TEST(characterisation, copies_what_is_read_and_nothing_else)
{
    isp_sensor_description sensor = {{1, 2}, 3264, 2448, 10, 7};
    isp_entry_table_header header = {{3, 4}, 2};
    std::array<uint8_t, 32> table = {1, 2, 3};
    const isp_cmc source = {&sensor, &header, &sensor, &header, table.data()};
    const context_ptr context = make_context(1, 1, &source);
    ASSERT_NE(context, nullptr);
    const isp_cmc &copy = *context->cmc;
    EXPECT_EQ(copy.cmc_field_0, nullptr);
    EXPECT_EQ(copy.cmc_field_1, nullptr);
    EXPECT_NE(copy.sensor_description, &sensor);
    EXPECT_EQ(std::memcmp(copy.sensor_description, &sensor, 16), 0);
    EXPECT_EQ(std::memcmp(copy.entry_table_header, &header, 12), 0);
    EXPECT_EQ(std::memcmp(copy.entry_table, table.data(), 32), 0);
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
    EXPECT_EQ(copy.entry_table_header, nullptr);
    header.entry_count = 0;
    const isp_cmc empty_table = {nullptr, nullptr, nullptr, &header, nullptr};
    copy_cmc(&copy, &empty_table);
    EXPECT_NE(copy.entry_table_header, nullptr);
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
        uint32_t exponent;
        uint32_t depth;
        int32_t sum;
        uint8_t average;
    };
    for (const auto &[exponent, depth, sum, average] : {expectation{2, 10, 16368, 255},
                                                        {2, 10, 8192, 128},
                                                        {2, 10, 31, 0},
                                                        {2, 10, 32, 1},
                                                        {2, 10, 95, 1},
                                                        {2, 10, 96, 2},
                                                        {2, 10, 0x7fffffff, 0},
                                                        {2, 10, -64, 255},
                                                        {0, 9, 3, 2},
                                                        {0, 39, 0x3fffffff, 0},
                                                        {0, 39, 0x40000000, 255}}) {
        const context_ptr context = make_context(1, 1);
        const isp_stats_cell cell = {0, 0, {sum, 0, 0, 0}, 5, 6};
        const isp_stats stats = stats_of(1, 1, exponent, depth, &cell);
        const rgbs_grid_desc *rgbs = nullptr;
        const af_grid_desc *af = nullptr;
        ASSERT_EQ(qz_isp_2_7_statistics_convert(context.get(), &stats, &rgbs, &af), ISP_SUCCESS);
        EXPECT_EQ(rgbs->cells[0].average[0], average) << sum;
    }
}

TEST(statistics, cells_land_in_their_places)
{
    std::array<isp_stats_cell, 12> cells = {};
    const int32_t counts[] = {16, 0, 8, 1};
    const uint8_t saturations[] = {0, 255, 127, 239};
    for (size_t i = 0; i < cells.size(); ++i) {
        const auto n = static_cast<int32_t>(i);
        cells[i] = {0xdead,
                    counts[i % 4],
                    {64 * n, 64 * (n + 20), 64 * (n + 40), 64 * (n + 60)},
                    static_cast<uint32_t>(1000 + n),
                    static_cast<uint32_t>(2000 + n)};
    }
    const context_ptr context = make_context(4, 4);
    const isp_stats stats = stats_of(4, 3, 2, 10, cells.data());
    const rgbs_grid_desc *rgbs = nullptr;
    const af_grid_desc *af = nullptr;
    ASSERT_EQ(qz_isp_2_7_statistics_convert(context.get(), &stats, &rgbs, &af), ISP_SUCCESS);
    EXPECT_EQ(rgbs, context->rgbs_grid);
    EXPECT_EQ(rgbs->width, 4);
    EXPECT_EQ(af->height, 3);
    EXPECT_EQ(af->block_width, 7);
    EXPECT_EQ(af->block_height, 7);
    for (size_t i = 0; i < cells.size(); ++i) {
        for (size_t k = 0; k < 4; ++k)
            EXPECT_EQ(rgbs->cells[i].average[k], i + 20 * k);
        EXPECT_EQ(rgbs->cells[i].saturation, saturations[i % 4]);
        EXPECT_EQ(af->filter_1[i], 1000 + i);
        EXPECT_EQ(af->filter_2[i], 2000 + i);
    }
    EXPECT_EQ(af->filter_1[12], 0u);
}

TEST(statistics, what_cannot_be_converted_writes_nothing)
{
    const context_ptr context = make_context(2, 2);
    std::array<isp_stats_cell, 5> cells = {};
    const rgbs_grid_desc *rgbs = nullptr;
    const af_grid_desc *af = nullptr;
    for (const isp_stats &bad :
         {stats_of(5, 1, 2, 10, cells.data()), stats_of(1, 1, 0, 8, cells.data()), stats_of(1, 1, 0, 40, cells.data()),
          stats_of(1, 1, 0x80000000, 10, cells.data()), stats_of(1, 1, 16, 1, cells.data()),
          stats_of(1, 1, 2, 0xffffffff, cells.data()), stats_of(1, 1, 2, 10, nullptr)}) {
        EXPECT_EQ(qz_isp_2_7_statistics_convert(context.get(), &bad, &rgbs, &af), ISP_INVALID_DATA);
        EXPECT_EQ(context->rgbs_grid->width, 0);
        EXPECT_EQ(rgbs, nullptr);
    }
    const isp_stats good = stats_of(0x10001, 4, 2, 10, cells.data()); // the low 16 bits count
    EXPECT_EQ(qz_isp_2_7_statistics_convert(context.get(), &good, &rgbs, nullptr), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(context.get(), &good, nullptr, &af), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(context.get(), nullptr, &rgbs, &af), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(nullptr, &good, &rgbs, &af), ISP_INVALID_DATA);
    isp_context bare = {};
    EXPECT_EQ(qz_isp_2_7_statistics_convert(&bare, &good, &rgbs, &af), ISP_INVALID_DATA);
    bare.rgbs_grid = context->rgbs_grid;
    EXPECT_EQ(qz_isp_2_7_statistics_convert(&bare, &good, &rgbs, &af), ISP_INVALID_DATA);
    EXPECT_EQ(qz_isp_2_7_statistics_convert(context.get(), &good, &rgbs, &af), ISP_SUCCESS);
    EXPECT_EQ(rgbs->width, 1);
    const isp_stats empty = stats_of(0, 4, 0, 0, nullptr); // no cell to scale
    EXPECT_EQ(qz_isp_2_7_statistics_convert(context.get(), &empty, &rgbs, &af), ISP_SUCCESS);
    EXPECT_EQ(af->height, 4);
}

} // namespace
