#include <cstdlib>

#include "qz_isp/bicubic.h"
#include "util/cubic_strip.h"
#include "util/extended_buffer.h"
#include "util/multiversion.h"
#include "util/p10.h"

namespace {

// Corners fall on corners.
struct corner_axis {
    float dst_last;
    float src_last;

    [[gnu::always_inline]] float position(uint32_t index) const
    {
        return static_cast<float>(index) / dst_last * src_last;
    }
};

struct resize_job {
    const float *buffer;
    size_t stride;
    corner_axis across;
    corner_axis down;
    uint16_t *dst;
    qz::plane_size size;
};

QZ_MULTIVERSION void resize_strip(qz::cubic_strip<double> &strip, const resize_job &job, uint32_t first_column)
{
    qz::resample_strip(strip, job.buffer, job.stride, job.across, job.down, job.dst, job.size, first_column,
                       [](float value) { return qz::truncate_to_p10(value); });
}

corner_axis axis(uint32_t src, uint32_t dst)
{
    return {.dst_last = static_cast<float>(dst) - 1.0f, .src_last = static_cast<float>(src) - 1.0f};
}

} // namespace

uint32_t bicubic_resize_32f_to_u16p10(const float *src, uint16_t src_rows, uint16_t src_cols, uint16_t *dst,
                                      uint16_t dst_rows, uint16_t dst_cols)
{
    if (src_rows == 0 || src_cols == 0 || dst_rows == 1 || dst_cols == 1)
        return 32;

    const size_t size = qz::extended_size(src_cols, src_rows);
    auto *buffer = static_cast<float *>(std::malloc(size));
    if (buffer == nullptr)
        return 4;
    qz::fill_extended(src, buffer, src_cols, src_rows);

    const resize_job job = {.buffer = buffer,
                            .stride = qz::extended_stride(src_cols),
                            .across = axis(src_cols, dst_cols),
                            .down = axis(src_rows, dst_rows),
                            .dst = dst,
                            .size = {.rows = dst_rows, .columns = dst_cols}};
    alignas(64) qz::cubic_strip<double> strip;
    for (uint32_t column = 0; column < dst_cols; column += qz::cubic_strip<double>::width)
        resize_strip(strip, job, column);

    std::free(buffer);
    return 0;
}
