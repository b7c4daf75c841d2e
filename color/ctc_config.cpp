#include <algorithm>
#include <cstddef>
#include <cstring>

#include "qz_isp/color.h"
#include "qz_isp/gain.h"
#include "tuning/record_view.h"
#include "util/float_to_int.h"

void compute_ctc_config(const isp_record *record, float factor, uint16_t *block)
{
    const auto tuned = qz::values_of<isp_ctc_config_values>(record);

    uint32_t products[6];
    for (size_t k = 0; k < 6; ++k)
        products[k] = qz::truncate_to_u32(static_cast<float>(tuned.scaled[k]) * factor);
    const uint32_t shift = calc_shifter(*std::max_element(products, products + 6) >> 13);

    isp_ctc_config_values result = tuned;
    for (size_t k = 0; k < 6; ++k)
        result.scaled[k] = static_cast<uint16_t>(products[k] >> shift);
    result.base_shift = static_cast<uint16_t>(tuned.base_shift + shift);
    std::memcpy(block, &result, sizeof result);
}
