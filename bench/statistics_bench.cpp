#include <memory>
#include <string>

#include "bench/cases.h"
#include "bench/compare.h"
#include "bench/plain_loops.h"
#include "bench/subjects.h"

namespace bench {

namespace {

void compare_conversion(uint32_t width, uint32_t height)
{
    const auto grid = std::make_shared<statistics_case>(width, height);
    compare("qz_isp_2_7_statistics_convert", std::to_string(width) + "x" + std::to_string(height),
            [=] { grid->convert(); },
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
