#include <memory>
#include <string>
#include <vector>

#include "compare.h"
#include "plain_loops.h"
#include "qz_isp/context.h"
#include "subjects.h"

namespace bench {

namespace {

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
};

void compare_conversion(uint32_t width, uint32_t height)
{
    const auto grid = std::make_shared<statistics_case>(width, height);
    compare("qz_isp_2_7_statistics_convert", std::to_string(width) + "x" + std::to_string(height),
            [=] {
                const rgbs_grid_desc *rgbs = nullptr;
                const af_grid_desc *af = nullptr;
                qz_isp_2_7_statistics_convert(grid->context, &grid->stats, &rgbs, &af);
            },
            {{"plain loop", 0.6, [=] {
                  plain_statistics(grid->stats, grid->rgbs.data(), grid->filter_1.data(), grid->filter_2.data());
              }}});
}

} // namespace

void register_statistics()
{
    compare_conversion(80, 60);
    compare_conversion(320, 240);
}

} // namespace bench
