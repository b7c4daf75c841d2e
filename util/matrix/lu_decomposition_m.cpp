#include <cstdlib>

#include "qz_isp/error.h"
#include "qz_isp/matrix.h"
#include "util/matrix/block.h"
#include "util/matrix/transpose.h"

namespace {

using qz::block_size;
using qz::block_stride;

constexpr ptrdiff_t dense = sizeof(float);

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

// One step of the elimination; takes anything for the strides, also ones that let elements share bytes.
void eliminate_plain(const qz::target_view &work, const qz::target_view &out, int32_t n, int32_t k)
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

// Zeros, then ones: what starts i words before the ones is the mask of all lanes but the first i.
struct lane_masks {
    constexpr lane_masks() : mask()
    {
        for (int i = block_size; i < 3 * block_size; ++i)
            mask[i] = -1;
    }
    int32_t mask[3 * block_size];
};
constexpr lane_masks last_lanes;

// Factors of a 16 x 16 block that is held by columns: a vector is a part of a column. What lies above the current pivot
// is finished and stays.
template <int Lanes>
QZ_ALWAYS_INLINE void factorise_block(qz::block &columns)
{
    for (int k = 0; k < block_size; ++k) {
        const float pivot = columns.row[k][k];
        for (int part = 0; part < block_size; part += Lanes) {
            qz::int_vec<Lanes> below;
            memcpy(&below, &last_lanes.mask[block_size - 1 - k + part], sizeof below);
            qz::vec<Lanes> multipliers;
            qz::load(multipliers, &columns.row[k][part]);
            qz::select<Lanes>(multipliers, below, multipliers / pivot, multipliers);
            qz::store(&columns.row[k][part], multipliers);
            for (int c = k + 1; c < block_size; ++c) {
                qz::vec<Lanes> column;
                qz::load(column, &columns.row[c][part]);
                qz::select<Lanes>(column, below, column - multipliers * columns.row[c][k], column);
                qz::store(&columns.row[c][part], column);
            }
        }
    }
}

// Takes the products with earlier rows from 16 rows of 16 floats: row i loses row k times factor (i, k), after row k
// was divided by factor (k, k) where asked for.
template <int Lanes, bool Divide>
QZ_ALWAYS_INLINE void substitute(unsigned char *rows, ptrdiff_t stride, const qz::block &factors)
{
    for (int part = 0; part < block_size; part += Lanes) {
        unsigned char *at = rows + part * dense;
        qz::vec<Lanes> row[block_size];
        for (int i = 0; i < block_size; ++i)
            qz::load(row[i], at + i * stride);
#pragma GCC unroll 16
        for (int k = 0; k < block_size; ++k) {
            if constexpr (Divide)
                row[k] /= factors.row[k][k];
#pragma GCC unroll 16
            for (int i = k + 1; i < block_size; ++i)
                row[i] -= row[k] * factors.row[i][k];
        }
        for (int i = 0; i < block_size; ++i)
            qz::store(at + i * stride, row[i]);
    }
}

// Elimination of a dense matrix in place, 16 columns at a time. Its size is a multiple of 16: it may be larger than the
// matrix that matters, whose elements depend on none to the right of them or below. Each element still loses its
// products one after the other, in order of k.
struct blocked_elimination {
    qz::target_view work;
    int32_t size;

    template <int Lanes>
    QZ_ALWAYS_INLINE void run() const
    {
        for (int32_t k = 0; k < size; k += block_size) {
            qz::block columns; // of the block on the diagonal
            qz::block rows;
            transpose<Lanes>(work.from(k, k), columns.view());
            factorise_block<Lanes>(columns);
            transpose<Lanes>(columns.view(), rows.view());
            qz::copy_block(rows.view(), work.from(k, k), block_size, block_size);
            for (int32_t c = k + block_size; c < size; c += block_size)
                substitute<Lanes, false>(work.at(k, c), work.row_stride, rows);
            for (int32_t r = k + block_size; r < size; r += block_size)
                eliminate_rows<Lanes>(r, k, columns);
        }
    }

    // Sixteen rows below the diagonal block: their multipliers first, then what lies to the right.
    template <int Lanes>
    QZ_ALWAYS_INLINE void eliminate_rows(int32_t r, int32_t k, const qz::block &diagonal) const
    {
        qz::block multipliers;
        transpose<Lanes>(work.from(r, k), multipliers.view());
        substitute<Lanes, true>(multipliers.view().data, block_stride, diagonal);
        transpose<Lanes>(multipliers.view(), work.from(r, k));
        for (int32_t c = k + block_size; c < size; c += block_size)
            qz::accumulate<Lanes, qz::sign::minus>(work.at(r, c), work.row_stride, multipliers.row[0], work.at(k, c),
                                                   work.row_stride, block_size, block_size, false);
    }

    template <int Lanes>
    QZ_ALWAYS_INLINE static void transpose(const qz::target_view &from, const qz::target_view &to)
    {
        qz::transpose_wide<Lanes>(from.data, from.row_stride, to.data, to.row_stride, block_size, block_size);
    }
};

struct factors {
    qz::source_view a;
    qz::target_view out;
    int32_t n;
};

// The work copy is as large as whole blocks need it; the rest of the last ones is made an identity.
bool factorise_blocked(const factors &f)
{
    const auto size = (static_cast<size_t>(f.n) + block_size - 1) / block_size * block_size;
    auto *memory = static_cast<float *>(std::calloc(size, size * sizeof(float)));
    if (memory == nullptr)
        return false;
    for (auto k = static_cast<size_t>(f.n); k < size; ++k)
        memory[k * size + k] = 1.0f;
    const qz::target_view work = {reinterpret_cast<unsigned char *>(memory),
                                  static_cast<ptrdiff_t>(size * sizeof(float)), dense};
    qz::copy(f.a, work, f.n, f.n);
    qz::run_widest(blocked_elimination{work, static_cast<int32_t>(size)});
    qz::copy(work, f.out, f.n, f.n);
    std::free(memory);
    return true;
}

bool factorise_plain(const factors &f, uint32_t elements)
{
    const size_t size = elements * sizeof(float);
    void *memory = std::malloc(size);
    if (memory == nullptr)
        return false;
    memcpy(memory, f.a.data, size);
    const qz::target_view work = {static_cast<unsigned char *>(memory), f.a.row_stride, f.a.column_stride};
    for (int32_t k = 0; k < f.n; ++k)
        eliminate_plain(work, f.out, f.n, k);
    std::free(memory);
    return true;
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
    const factors f = {qz::source(a, a_row_stride, a_column_stride), qz::target(out, out_row_stride, out_column_stride),
                       n};
    if (!(apart(f.a, n, n) && apart(f.out, n, n) ? factorise_blocked(f) : factorise_plain(f, elements)))
        return ISP_OUT_OF_MEMORY;
    for (int32_t k = 0; k < n; ++k)
        index[k] = static_cast<uint32_t>(k);
    return ISP_SUCCESS;
}
