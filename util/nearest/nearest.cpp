#include "qz_isp/nearest.h"

#include "qz_isp/error.h"
#include "util/nearest/nearest_index.h"
#include "util/nearest/nearest_maximum.h"
#include "util/nearest/nearest_pick.h"

namespace {

bool all_at_least_2(uint16_t src_width, uint16_t src_height, uint16_t dst_width, uint16_t dst_height)
{
    return src_width >= 2 && src_height >= 2 && dst_width >= 2 && dst_height >= 2;
}

} // namespace

uint32_t image_nearest_neighbor_scale_uint32(const uint32_t *src, int32_t src_width, int32_t src_height, uint32_t *dst,
                                             int32_t dst_width, int32_t dst_height)
{
    if (src_width < 1 || src_height < 1 || dst_width < 1 || dst_height < 1 || src == nullptr || dst == nullptr)
        return ISP_INVALID_ARGUMENT;
    qz::pick_nearest<uint32_t, qz::fixed_point_rule>(src, src_width, src_height, dst, dst_width, dst_height);
    return ISP_SUCCESS;
}

uint32_t image_upscale_nearest_neighbor_uint16(const uint16_t *src, uint16_t *dst, uint16_t src_width,
                                               uint16_t src_height, uint16_t dst_width, uint16_t dst_height)
{
    if (!all_at_least_2(src_width, src_height, dst_width, dst_height))
        return ISP_INVALID_ARGUMENT;
    qz::pick_nearest<uint16_t, qz::ceiling_rule>(src, src_width, src_height, dst, dst_width, dst_height);
    return ISP_SUCCESS;
}

uint32_t image_downscale_nearest_neighbor_int32(const int32_t *src, int32_t *dst, uint16_t src_width,
                                                uint16_t src_height, uint16_t dst_width, uint16_t dst_height,
                                                uint8_t use_maximum)
{
    if (!all_at_least_2(src_width, src_height, dst_width, dst_height))
        return ISP_INVALID_ARGUMENT;
    if (use_maximum != 0)
        qz::block_maxima(src, dst, {src_width, src_height, dst_width, dst_height});
    else
        qz::pick_nearest<int32_t, qz::ceiling_rule>(src, src_width, src_height, dst, dst_width, dst_height);
    return ISP_SUCCESS;
}
