#include <algorithm>

#include "qz_isp/polynomial.h"
#include "util/matrix/block.h"
#include "util/polynomial/polynomial_terms.h"

namespace {

// Columns and rows worked on at a time.
constexpr int tile_columns = 256;
constexpr int tile_rows = 64;

// Distance between output samples, in input samples. One output sample lies at coordinate 1, whatever the spacing.
float spacing(uint16_t in_size, uint16_t out_size)
{
    return out_size > 1 ? static_cast<float>(in_size - 1) / static_cast<float>(out_size - 1) : 0.0f;
}

// What a column contributes, the same in every row.
struct column_terms {
    float x[tile_columns], x2[tile_columns], x3[tile_columns];
    float c1_c0[tile_columns], c3[tile_columns], c6[tile_columns], c10[tile_columns];
};

// What a row contributes, the same in every column.
struct row_terms {
    float y, y2, y3;
    float c2, c5, c9, c14;
};

QZ_ALWAYS_INLINE void fill(column_terms &columns, const float *c, int first, int count, float sx)
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

QZ_ALWAYS_INLINE row_terms terms_of_row(const float *c, int j, float sy)
{
    const float y = static_cast<float>(j) * sy + 1.0f;
    const float y2 = y * y;
    const float y3 = y2 * y;
    return {y, y2, y3, c[2] * y, c[5] * y2, c[9] * y3, c[14] * (y3 * y)};
}

template <int Lanes>
struct column_group {
    qz::vec<Lanes> x, x2, x3, c1_c0, c3, c6, c10;

    QZ_ALWAYS_INLINE column_group(const column_terms &columns, int begin)
    {
        qz::load(x, columns.x + begin);
        qz::load(x2, columns.x2 + begin);
        qz::load(x3, columns.x3 + begin);
        qz::load(c1_c0, columns.c1_c0 + begin);
        qz::load(c3, columns.c3 + begin);
        qz::load(c6, columns.c6 + begin);
        qz::load(c10, columns.c10 + begin);
    }

    // Each term is coefficient times monomial, the monomial a power of x times a power of y.
    QZ_ALWAYS_INLINE void sum(qz::vec<Lanes> &total, const row_terms &row, const float *c) const
    {
        total = c1_c0 + row.c2;
        total += c3;
        total += c[4] * (x * row.y);
        total += row.c5;
        total += c6;
        total += c[7] * (x2 * row.y);
        total += c[8] * (x * row.y2);
        total += row.c9;
        total += c10;
        total += c[11] * (x3 * row.y);
        total += c[12] * (x2 * row.y2);
        total += c[13] * (x * row.y3);
        total += row.c14;
    }
};

struct coefficients {
    float c[qz::polynomial_terms];
};

// One group of columns in all rows; column_count is below Lanes where the whole output is narrower than that.
template <int Lanes>
QZ_ALWAYS_INLINE void write_group(float *to, ptrdiff_t row_length, const column_group<Lanes> &group,
                                  const row_terms *rows, int row_count, const coefficients &all, int column_count)
{
    const coefficients local = all; // the output is known not to change it
    for (int j = 0; j < row_count; ++j, to += row_length) {
        qz::vec<Lanes> total;
        group.sum(total, rows[j], local.c);
        if (column_count == Lanes) {
            qz::store(to, total);
        } else {
            float narrow[Lanes];
            qz::store(narrow, total);
            std::copy_n(narrow, column_count, to);
        }
    }
}

struct evaluation {
    float *out;
    int width, height;
    float sx, sy;
    coefficients all;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        column_terms columns;
        row_terms rows[tile_rows];
        for (int first = 0; first < width; first += tile_columns) {
            const int column_count = std::min(tile_columns, width - first);
            fill(columns, all.c, first, std::max(column_count, Lanes), sx);
            for (int top = 0; top < height; top += tile_rows) {
                const int row_count = std::min(tile_rows, height - top);
                for (int j = 0; j < row_count; ++j)
                    rows[j] = terms_of_row(all.c, top + j, sy);
                write_tile<Lanes>(out + static_cast<ptrdiff_t>(top) * width + first, columns, rows, column_count,
                                  row_count);
            }
        }
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE void write_tile(float *to, const column_terms &columns, const row_terms *rows, int column_count,
                                     int row_count) const
    {
        for (int next = 0; next < column_count; next += Lanes) {
            // The last group ends with the row; what it shares with the one before is the same in both.
            const int begin = std::max(0, std::min(next, column_count - Lanes));
            write_group<Lanes>(to + begin, width, column_group<Lanes>(columns, begin), rows, row_count, all,
                               std::min(Lanes, column_count));
        }
    }
};

} // namespace

void do_polynomial_upscale(float *out, const float *coeffs, uint16_t in_w, uint16_t in_h, uint32_t out_w,
                           uint16_t out_h)
{
    const auto width = static_cast<uint16_t>(out_w);
    if (width == 0 || out_h == 0)
        return; // without reading the coefficients: there may be none
    evaluation job = {out, width, out_h, spacing(in_w, width), spacing(in_h, out_h), {}};
    std::copy_n(coeffs, qz::polynomial_terms, job.all.c);
    qz::run_widest(job);
}
