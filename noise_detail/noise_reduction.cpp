#include <algorithm>

#include "noise_detail/gain_rows.h"
#include "noise_detail/strength.h"
#include "qz_isp/noise_detail.h"

namespace {

struct row {
    uint16_t key;
    uint16_t param0;
    uint16_t param1;
    uint16_t param2;
    uint16_t param3;
    uint16_t param4;
};

constexpr uint32_t limit = 65535;

} // namespace

void compute_noise_reduction(uint16_t gain, const isp_table_slot *slot, int8_t strength, uint32_t *param0,
                             uint32_t *param1, uint32_t *param2, uint32_t *param3, uint32_t *param4)
{
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    *param0 = pair.at(&row::param0);
    *param1 = pair.at(&row::param1);
    *param2 = pair.at(&row::param2);
    *param3 = pair.at(&row::param3);
    *param4 = pair.at(&row::param4);
    if (strength == 0)
        return;

    const float factor = qz::strength_factor(strength, qz::fifth_to_fivefold);
    *param0 = std::min(qz::scaled(*param0, factor), limit);
    *param1 = std::min(qz::scaled(*param1, factor), limit);
}
