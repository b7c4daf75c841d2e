#include <algorithm>
#include <cstdlib>

#include "qz_isp/bicubic.h"
#include "qz_isp/error.h"
#include "qz_log.h"
#include "util/resample/cubic_strip.h"
#include "util/resample/extended_buffer.h"
#include "util/simd/dispatch.h"

namespace {

struct scaled_axis {
    float scale;

    QZ_ALWAYS_INLINE float position(uint32_t index) const { return static_cast<float>(index) * scale; }
};

struct upscale_job {
    size_t stride;
    scaled_axis across;
    scaled_axis down;
    qz::plane_size size;
};

struct to_range {
    template <int Lanes>
    QZ_ALWAYS_INLINE static void store(float *out, const qz::vec<Lanes> &low, const qz::vec<Lanes> &high)
    {
        float values[2 * Lanes];
        qz::store(values, low);
        qz::store(values + Lanes, high);
        for (float &value : values)
            value = std::min(std::max(value, -255.0f), 65535.0f);
        memcpy(out, values, sizeof values);
    }
};

struct plane_upscale {
    template <int Lanes>
    QZ_ALWAYS_INLINE void run(qz::cubic_strip<float> &strip, const upscale_job &job, const float *buffer,
                              float *dst) const
    {
        qz::resample_plane<Lanes, to_range>(strip, buffer, job.stride, job.across, job.down, dst, job.size);
    }
};

scaled_axis axis(uint32_t src, uint32_t dst)
{
    return {.scale = (static_cast<float>(src) - 1.0f) / (static_cast<float>(dst) - 1.0f)};
}

template <typename Sample>
uint32_t upscale(const Sample *const *src_planes, float *const *dst_planes, uint32_t src_width, uint32_t src_height,
                 uint32_t dst_width, uint32_t dst_height, uint32_t plane_count)
{
    if (src_width > dst_width || src_height > dst_height) {
        qz_log(QZ_LOG_ERROR, "Not upscaling");
        return ISP_INVALID_ARGUMENT;
    }
    if (src_width == 0 || src_height == 0 || dst_width == 1 || dst_height == 1)
        return ISP_INVALID_ARGUMENT;

    const size_t size = qz::extended_size(src_width, src_height);
    auto *strip = static_cast<qz::cubic_strip<float> *>(std::malloc(sizeof(qz::cubic_strip<float>)));
    auto *buffer = static_cast<float *>(std::malloc(size));
    const bool allocated = strip != nullptr && buffer != nullptr;
    if (allocated) {
        const upscale_job job = {.stride = qz::extended_stride(src_width),
                                 .across = axis(src_width, dst_width),
                                 .down = axis(src_height, dst_height),
                                 .size = {.rows = dst_height, .columns = dst_width}};
        for (uint32_t plane = 0; plane < plane_count; ++plane) {
            qz::fill_extended(src_planes[plane], buffer, src_width, src_height);
            qz::run_widest(plane_upscale(), *strip, job, buffer, dst_planes[plane]);
        }
    } else {
        qz_log(QZ_LOG_ERROR, "QZ_ALLOC failed");
    }

    std::free(buffer);
    std::free(strip);
    return allocated ? ISP_SUCCESS : ISP_OUT_OF_MEMORY;
}

} // namespace

uint32_t image_bicubic_upscale_uint8_to_float(const uint8_t *const *src_planes, float *const *dst_planes,
                                              uint16_t src_width, uint16_t src_height, uint16_t dst_width,
                                              uint16_t dst_height, uint16_t plane_count)
{
    return upscale(src_planes, dst_planes, src_width, src_height, dst_width, dst_height, plane_count);
}

uint32_t image_bicubic_upscale_uint16_to_float(const uint16_t *const *src_planes, float *const *dst_planes,
                                               uint16_t src_width, uint16_t src_height, uint16_t dst_width,
                                               uint16_t dst_height, uint16_t plane_count)
{
    return upscale(src_planes, dst_planes, src_width, src_height, dst_width, dst_height, plane_count);
}
