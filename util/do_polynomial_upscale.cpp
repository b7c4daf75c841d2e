#include <algorithm>

#include "qz_isp/polynomial.h"
#include "util/polynomial_terms.h"

namespace {

constexpr int tile = 256;

// Distance between output samples, in input samples. One output sample lies at coordinate 1, whatever the spacing.
float spacing(uint16_t in_size, uint16_t out_size)
{
    return out_size > 1 ? static_cast<float>(in_size - 1) / static_cast<float>(out_size - 1) : 0.0f;
}

// What the columns of a tile contribute, the same in every row.
struct column_terms {
    float x[tile];
    float x2[tile];
    float x3[tile];
    float c1_c0[tile];
    float c3[tile];
    float c6[tile];
    float c10[tile];
};

void fill_columns(column_terms &columns, const float *c, int first, int count, float sx)
{
    for (int i = 0; i < count; ++i) {
        const float x = static_cast<float>(first + i) * sx + 1.0f;
        const float x2 = x * x;
        const float x3 = x2 * x;
        columns.x[i] = x;
        columns.x2[i] = x2;
        columns.x3[i] = x3;
        columns.c1_c0[i] = c[1] * x + c[0];
        columns.c3[i] = c[3] * x2;
        columns.c6[i] = c[6] * x3;
        columns.c10[i] = c[10] * (x3 * x);
    }
}

void write_row(float *out, const column_terms &columns, const float *c, int count, float y)
{
    const float y2 = y * y;
    const float y3 = y2 * y;
    const float c2 = c[2] * y;
    const float c5 = c[5] * y2;
    const float c9 = c[9] * y3;
    const float c14 = c[14] * (y3 * y);
    for (int i = 0; i < count; ++i) {
        const float x = columns.x[i];
        const float x2 = columns.x2[i];
        const float x3 = columns.x3[i];
        float sum = columns.c1_c0[i];
        sum += c2;
        sum += columns.c3[i];
        sum += c[4] * (x * y);
        sum += c5;
        sum += columns.c6[i];
        sum += c[7] * (x2 * y);
        sum += c[8] * (x * y2);
        sum += c9;
        sum += columns.c10[i];
        sum += c[11] * (x3 * y);
        sum += c[12] * (x2 * y2);
        sum += c[13] * (x * y3);
        sum += c14;
        out[i] = sum;
    }
}

} // namespace

void do_polynomial_upscale(float *out, const float *coeffs, uint16_t in_w, uint16_t in_h, uint32_t out_w,
                           uint16_t out_h)
{
    float c[qz::polynomial_terms];
    std::copy_n(coeffs, qz::polynomial_terms, c);
    const auto width = static_cast<uint16_t>(out_w);
    const float sx = spacing(in_w, width);
    const float sy = spacing(in_h, out_h);
    column_terms columns;
    for (int first = 0; first < width; first += tile) {
        const int count = std::min(tile, width - first);
        fill_columns(columns, c, first, count, sx);
        float *at = out + first;
        for (int j = 0; j < out_h; ++j, at += width)
            write_row(at, columns, c, count, static_cast<float>(j) * sy + 1.0f);
    }
}
