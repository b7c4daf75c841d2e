#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

namespace {

struct row {
    uint16_t key;
    uint16_t param0;
    uint16_t param1;
    uint16_t param2;
};

constexpr qz::strength_span third_to_threefold = {2.0, -0.667};
constexpr qz::strength_span half_to_twofold = {1.0, -0.5};

} // namespace

void compute_edge_enhancement(uint16_t gain, int8_t sharpness, const isp_table_slot *slot, uint32_t *param0,
                              uint32_t *param1, uint32_t *param2)
{
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    *param0 = qz::scaled(pair.at(&row::param0), qz::strength_factor(sharpness, third_to_threefold));
    *param1 = pair.at(&row::param1);
    *param2 = qz::scaled(pair.at(&row::param2), qz::strength_factor(sharpness, half_to_twofold));
}
