#include "noise_detail/gain_rows.h"
#include "qz_isp/noise_detail.h"

void compute_xnr(uint16_t gain, const isp_table_slot *slot, uint32_t *param)
{
    using row = isp_xnr_row;
    const qz::gain_rows<row> rows(*slot);
    if (!rows.empty())
        *param = rows.around(gain).at(&row::param);
}
