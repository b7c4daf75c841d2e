#include "noise_detail/gain_rows.h"
#include "qz_isp/noise_detail.h"

namespace {

struct row {
    uint16_t key;
    uint16_t param;
};

} // namespace

void compute_xnr(uint16_t gain, const isp_table_slot *slot, uint32_t *param)
{
    const qz::gain_rows<row> rows(*slot);
    if (!rows.empty())
        *param = rows.around(gain).at(&row::param);
}
