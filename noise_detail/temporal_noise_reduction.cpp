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

} // namespace

void compute_temporal_noise_reduction(uint16_t gain, const isp_table_slot *slot, int8_t strength, uint32_t *param0,
                                      uint32_t *param1, uint32_t *param2)
{
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    *param0 = pair.at(&row::param0);
    *param1 = pair.at(&row::param1);
    *param2 = pair.at(&row::param2);
    if (strength != 0)
        *param0 = qz::scaled(*param0, qz::strength_factor(strength, qz::fifth_to_fivefold));
}
