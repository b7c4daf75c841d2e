#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

void compute_edge_enhancement(uint16_t gain, int8_t sharpness, const isp_table_slot *slot, uint32_t *param0,
                              uint32_t *param1, uint32_t *param2)
{
    using row = isp_edge_enhancement_row;
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    *param0 = qz::scaled(pair.at(&row::param, 0), qz::strength_factor(sharpness, qz::edge_enhancement_0_strength));
    *param1 = pair.at(&row::param, 1);
    *param2 = qz::scaled(pair.at(&row::param, 2), qz::strength_factor(sharpness, qz::edge_enhancement_2_strength));
}
