#include "noise_detail/gain_rows.h"
#include "qz_isp/noise_detail.h"

void compute_defect_pixel_correction(uint16_t gain, const isp_table_slot *slot, uint32_t *param0, uint32_t *param1)
{
    using row = isp_defect_pixel_correction_row;
    const qz::gain_rows<row> rows(*slot);
    if (rows.empty())
        return;

    const auto pair = rows.around(gain);
    // Parameter 0 last: it is what stays where both go to one word.
    *param1 = pair.at(&row::param, 1);
    *param0 = pair.at(&row::param, 0);
}
