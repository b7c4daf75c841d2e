#include <algorithm>

#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

void compute_noise_reduction(uint16_t gain, const isp_table_slot *slot, int8_t strength, uint32_t *param0,
                             uint32_t *param1, uint32_t *param2, uint32_t *param3, uint32_t *param4)
{
    using row = isp_noise_reduction_row;
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    *param0 = pair.at(&row::param, 0);
    *param1 = pair.at(&row::param, 1);
    *param2 = pair.at(&row::param, 2);
    *param3 = pair.at(&row::param, 3);
    *param4 = pair.at(&row::param, 4);
    if (strength == 0)
        return;

    constexpr qz::strength_rule rule = qz::noise_reduction_strength;
    const float factor = qz::strength_factor(strength, rule);
    *param0 = std::min(qz::scaled(*param0, factor), rule.limit);
    *param1 = std::min(qz::scaled(*param1, factor), rule.limit);
}
