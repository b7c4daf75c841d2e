#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

void compute_temporal_noise_reduction(uint16_t gain, const isp_table_slot *slot, int8_t strength, uint32_t *param0,
                                      uint32_t *param1, uint32_t *param2)
{
    using row = isp_temporal_noise_reduction_row;
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    *param0 = pair.at(&row::param, 0);
    *param1 = pair.at(&row::param, 1);
    *param2 = pair.at(&row::param, 2);
    if (strength != 0)
        *param0 = qz::scaled(*param0, qz::strength_factor(strength, qz::temporal_noise_reduction_strength));
}
