#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

void compute_y_edge_enhancement(uint16_t gain, const isp_table_slot *slot, int8_t sharpness, uint16_t *param0,
                                uint16_t *param1, uint16_t *param2, uint16_t *param3)
{
    using row = isp_y_edge_enhancement_row;
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    uint16_t *const params[] = {param0, param1, param2, param3};
    for (size_t k = 0; k < 4; ++k)
        *params[k] = static_cast<uint16_t>(pair.at(&row::param, k));
    if (sharpness == 0)
        return;

    constexpr qz::strength_rule rule = qz::y_edge_enhancement_strength;
    const float factor = qz::strength_factor(sharpness, rule);
    for (uint16_t *param : params)
        *param = qz::scaled_16_bits(*param, factor, rule.limit);
}
