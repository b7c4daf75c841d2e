#include <cstdlib>

#include "qz_isp/bicubic.h"
#include "qz_isp/error.h"
#include "util/resample/cubic_strip.h"
#include "util/resample/extended_buffer.h"
#include "util/resample/p10.h"
#include "util/simd/dispatch.h"

namespace {

// Corners fall on corners.
struct corner_axis {
    float dst_last;
    float src_last;

    QZ_ALWAYS_INLINE float position(uint32_t index) const { return static_cast<float>(index) / dst_last * src_last; }
};

struct to_p10 {
    template <int Lanes>
    QZ_ALWAYS_INLINE static void store(uint16_t *out, const qz::vec<Lanes> &low, const qz::vec<Lanes> &high)
    {
        qz::short_vec<Lanes> samples;
        qz::truncate_to_p10<Lanes>(samples, low, high);
        qz::store(out, samples);
    }
};

struct resize_job {
    const float *buffer;
    size_t stride;
    corner_axis across;
    corner_axis down;
    uint16_t *dst;
    qz::plane_size size;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        alignas(64) qz::cubic_strip<double> strip;
        qz::resample_plane<Lanes, to_p10>(strip, buffer, stride, across, down, dst, size);
    }
};

corner_axis axis(uint32_t src, uint32_t dst)
{
    return {.dst_last = static_cast<float>(dst) - 1.0f, .src_last = static_cast<float>(src) - 1.0f};
}

} // namespace

uint32_t bicubic_resize_32f_to_u16p10(const float *src, uint16_t src_rows, uint16_t src_cols, uint16_t *dst,
                                      uint16_t dst_rows, uint16_t dst_cols)
{
    if (src_rows == 0 || src_cols == 0 || dst_rows == 1 || dst_cols == 1)
        return ISP_INVALID_ARGUMENT;

    const size_t size = qz::extended_size(src_cols, src_rows);
    auto *buffer = static_cast<float *>(std::malloc(size));
    if (buffer == nullptr)
        return ISP_OUT_OF_MEMORY;
    qz::fill_extended(src, buffer, src_cols, src_rows);

    const resize_job job = {.buffer = buffer,
                            .stride = qz::extended_stride(src_cols),
                            .across = axis(src_cols, dst_cols),
                            .down = axis(src_rows, dst_rows),
                            .dst = dst,
                            .size = {.rows = dst_rows, .columns = dst_cols}};
    qz::run_doubles(job);
    std::free(buffer);
    return ISP_SUCCESS;
}
