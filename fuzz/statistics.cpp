// Conversion of arbitrary statistics to the context's grids.
#include "qz_isp/statistics.h"

#include <cstring>

#include "fuzz/input.h"
#include "qz_isp/context.h"

namespace {

using fuzz::expect;

struct setup_bytes {
    uint8_t grid_width;
    uint8_t grid_height;
    uint8_t missing; // bits: context, statistics, RGBS, AF, cells
    isp_stats stats;
};

// The grids lie in one block with what follows them: the context's own fields tell a write beside them.
void check_grids(const isp_context &context, const isp_stats &stats, const rgbs_grid_desc *rgbs, const af_grid_desc *af)
{
    expect(rgbs == context.rgbs_grid && af == context.af_grid, "the descriptors are the context's");
    expect(rgbs->width == (stats.width & 0xffff) && rgbs->height == (stats.height & 0xffff) &&
               af->width == rgbs->width && af->height == rgbs->height,
           "both grids have the statistics' size");
    for (size_t i = 0; i < size_t{rgbs->width} * rgbs->height; ++i) {
        expect(af->filter_1[i] == stats.cells[i].filter_1_response &&
                   af->filter_2[i] == stats.cells[i].filter_2_response,
               "the filter responses are the statistics'");
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    fuzz::input in(bytes, size);
    const auto setup = in.take<setup_bytes>();
    const uint8_t container[24] = {'V', 'U', 'X', 'B'};
    const isp_blob blob = {container, sizeof container};
    isp_context *context = qz_isp_2_7_init(&blob, setup.grid_width, setup.grid_height, nullptr, nullptr);
    const isp_context before = *context;
    char key[17];
    std::memcpy(key, context->mkn_key, sizeof key);

    isp_stats stats = setup.stats;
    const size_t capacity = size_t{setup.grid_width} * setup.grid_height;
    const size_t cells = size_t{stats.width & 0xffff} * (stats.height & 0xffff);
    const fuzz::exact<isp_stats_cell> converted(cells <= capacity ? cells : 0);
    fuzz::fill(converted.elements(), in.rest());
    const auto missing = [&](int bit) { return (setup.missing >> bit & 1) != 0; };
    stats.cells = missing(4) ? nullptr : converted.data();

    const rgbs_grid_desc *rgbs = nullptr;
    const af_grid_desc *af = nullptr;
    const uint32_t status = qz_isp_2_7_statistics_convert(missing(0) ? nullptr : context, missing(1) ? nullptr : &stats,
                                                          missing(2) ? nullptr : &rgbs, missing(3) ? nullptr : &af);
    expect(status == 0 || status == 8, "conversion gives 0 or 8");
    if (status == 0)
        check_grids(*context, stats, rgbs, af);
    else
        expect(rgbs == nullptr && af == nullptr && context->rgbs_grid->width == 0, "a refused call writes nothing");
    expect(std::memcmp(&before, context, sizeof before) == 0 && std::memcmp(key, context->mkn_key, sizeof key) == 0,
           "the context around the grids stays");
    qz_isp_2_7_deinit(context);
    return 0;
}
