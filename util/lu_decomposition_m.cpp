#include <cstdlib>

#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/matrix_view.h"

namespace {

// Elements of the work copy; 0 when its byte count would not fit 32 bits.
uint32_t work_elements(int32_t n)
{
    const uint64_t elements = static_cast<uint64_t>(n) * static_cast<uint64_t>(n);
    return elements <= UINT32_MAX / sizeof(float) ? static_cast<uint32_t>(elements) : 0;
}

// True when every element that the strides reach lies within the work copy.
bool reaches_only(uint32_t elements, int32_t row_stride, int32_t column_stride, int32_t n)
{
    if (n == 1)
        return true;
    const int64_t last = (static_cast<int64_t>(row_stride) + column_stride) * (n - 1);
    return row_stride >= 0 && column_stride >= 0 &&
           last <= (static_cast<int64_t>(elements) - 1) * static_cast<int64_t>(sizeof(float));
}

void eliminate(const qz::target_view &work, const qz::target_view &out, int32_t n, int32_t k)
{
    const float pivot = qz::load_float(work.at(k, k));
    qz::store_float(out.at(k, k), pivot);
    for (int32_t i = k + 1; i < n; ++i) {
        qz::store_float(out.at(i, k), qz::load_float(work.at(i, k)) / pivot);
        qz::store_float(out.at(k, i), qz::load_float(work.at(k, i)));
    }
    for (int32_t r = k + 1; r < n; ++r) {
        for (int32_t c = k + 1; c < n; ++c) {
            const float product = qz::load_float(out.at(r, k)) * qz::load_float(out.at(k, c));
            qz::store_float(work.at(r, c), qz::load_float(work.at(r, c)) - product);
        }
    }
}

} // namespace

uint32_t lu_decomposition_m(const void *a, int32_t a_row_stride, int32_t a_column_stride, uint32_t *index, void *out,
                            int32_t out_row_stride, int32_t out_column_stride, int32_t n)
{
    if (n <= 0)
        return ISP_SUCCESS;
    const uint32_t elements = work_elements(n);
    if (elements == 0)
        return ISP_OUT_OF_MEMORY;
    if (!reaches_only(elements, a_row_stride, a_column_stride, n))
        return ISP_INVALID_ARGUMENT;
    const size_t size = elements * sizeof(float);
    void *work = malloc(size);
    if (work == nullptr)
        return ISP_OUT_OF_MEMORY;
    memcpy(work, a, size);
    const qz::target_view work_view = qz::target(work, a_row_stride, a_column_stride);
    const qz::target_view out_view = qz::target(out, out_row_stride, out_column_stride);
    for (int32_t k = 0; k < n; ++k) {
        eliminate(work_view, out_view, n, k);
        index[k] = static_cast<uint32_t>(k);
    }
    free(work);
    return ISP_SUCCESS;
}
