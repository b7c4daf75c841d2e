// The matrix family with arbitrary sizes and byte strides, the polynomial fit, and the small numeric routines. The
// first byte chooses the routine.
#include "qz_isp/matrix.h"

#include <algorithm>
#include <array>
#include <initializer_list>
#include <iterator>
#include <memory>
#include <vector>

#include "fuzz/input.h"
#include "qz_isp/checksum.h"
#include "qz_isp/gain.h"
#include "qz_isp/polynomial.h"
#include "tests/allocation_faults.h"

namespace {

using fuzz::exact;
using fuzz::expect;
using fuzz::input;

constexpr int32_t most = 40;       // rows or columns
constexpr uint16_t most_side = 24; // of a grid

int32_t signed_size(input &in)
{
    const auto chosen = in.take<int16_t>();
    return chosen < 0 ? chosen : chosen % (most + 1);
}

// A matrix's place in memory: strides of any kind, near what a dense one has more often than not.
struct layout {
    int32_t rows, columns;
    int32_t row_stride, column_stride;

    layout(input &in, int32_t given_rows, int32_t given_columns) : rows(given_rows), columns(given_columns)
    {
        const auto kind = in.take<uint8_t>();
        const auto any_row = in.take<int16_t>();
        const auto any_column = in.take<int16_t>();
        constexpr int32_t element = sizeof(float);
        row_stride = kind % 4 == 0 ? any_row % 512 : element * columns;
        column_stride = kind % 4 == 0 ? any_column % 512 : element;
        if (kind % 4 == 1) {
            row_stride = element;
            column_stride = element * rows;
        } else if (kind % 4 == 2) {
            row_stride += any_row % 64;
        }
    }

    bool empty() const { return rows <= 0 || columns <= 0; }
    // Bytes before and behind element (0, 0).
    size_t before() const { return reach(std::min(row_stride, 0), std::min(column_stride, 0)); }
    size_t behind() const { return empty() ? 0 : reach(std::max(row_stride, 0), std::max(column_stride, 0)) + 4; }

  private:
    size_t reach(int32_t down, int32_t right) const
    {
        return empty() ? 0 : static_cast<size_t>(std::abs(down * (rows - 1) + right * (columns - 1)));
    }
};

// The memory of a call's matrices: a block for each, or one in which all of them begin at the same place.
class memory {
  public:
    memory(std::initializer_list<layout> matrices, bool shared, fuzz::byte_view pool)
    {
        size_t before = 0;
        size_t behind = 0;
        for (const layout &each : matrices) {
            before = std::max(shared ? before : 0, each.before());
            behind = std::max(shared ? behind : 0, each.behind());
            if (!shared)
                add_block(before, behind, pool);
        }
        if (shared)
            add_block(before, behind, pool);
    }

    // Address of a matrix's element (0, 0).
    uint8_t *at(size_t matrix) const { return first_[std::min(matrix, first_.size() - 1)]; }

  private:
    void add_block(size_t before, size_t behind, fuzz::byte_view pool)
    {
        blocks_.push_back(std::make_unique<exact<uint8_t>>(before + behind));
        fuzz::fill(blocks_.back()->elements(), pool);
        first_.push_back(blocks_.back()->data() + before);
    }

    std::vector<std::unique_ptr<exact<uint8_t>>> blocks_;
    std::vector<uint8_t *> first_;
};

void transposition(input &in)
{
    const int32_t rows = signed_size(in);
    const int32_t columns = signed_size(in);
    const layout src(in, rows, columns);
    const layout dst(in, columns, rows);
    const bool shared = in.flag();
    const memory held({src, dst}, shared, in.rest());
    expect(transpose_m(held.at(0), src.row_stride, src.column_stride, columns, rows, held.at(1), dst.row_stride,
                       dst.column_stride) == 0,
           "a transposition gives 0");
}

void product(input &in)
{
    const int32_t rows = signed_size(in);
    const int32_t inner = signed_size(in);
    const int32_t columns = signed_size(in);
    const int32_t inner_b = in.size(10) == 1 ? signed_size(in) : inner;
    const layout a(in, rows, inner);
    const layout b(in, inner_b, columns);
    const layout c(in, rows, columns);
    const bool shared = in.flag();
    const memory held({a, b, c}, shared, in.rest());
    expect(mul_mm(held.at(0), a.row_stride, a.column_stride, inner, rows, held.at(1), b.row_stride, b.column_stride,
                  columns, inner_b, held.at(2), c.row_stride, c.column_stride) == (inner == inner_b ? 0u : 32u),
           "a product gives 0 where the matrices match");
}

// The matrix to factorise is a block of n x n floats whatever its strides say.
void factorisation(input &in)
{
    const int32_t n = signed_size(in);
    const layout a(in, n, n);
    const layout out(in, n, n);
    const bool in_place = in.flag();
    const size_t side = n > 0 ? static_cast<size_t>(n) : 0;
    const exact<float> dense(side * side);
    fuzz::fill(dense.elements(), in.rest());
    const exact<uint32_t> index(side);
    if (in_place) {
        lu_decomposition_m(dense.data(), 4 * n, 4, index.data(), dense.data(), 4 * n, 4, n);
        return;
    }
    const memory held({out}, false, {});
    const uint32_t status = lu_decomposition_m(dense.data(), a.row_stride, a.column_stride, index.data(), held.at(0),
                                               out.row_stride, out.column_stride, n);
    expect(status == 0 || index.untouched(), "a refused factorisation writes nothing");
}

void factorisation_of_a_large_matrix(input &in)
{
    const int32_t n = 32768 + in.take<uint16_t>();
    expect(lu_decomposition_m(nullptr, 4 * n, 4, nullptr, nullptr, 4 * n, 4, n) == 4,
           "a matrix beyond 32 bits is refused before it is read");
}

constexpr size_t terms = 15;

void polynomial_basis(input &in)
{
    const uint16_t width = in.size(most_side);
    const uint16_t height = in.size(most_side);
    const auto count = static_cast<uint16_t>(in.size(10) == 1 ? in.take<uint16_t>() : terms);
    const exact<float> design(terms * width * height);
    const exact<float> transposed(design.size());
    const exact<float> out(terms * terms);
    const exact<uint32_t> index(terms);
    const uint32_t status =
        lu_decomposition(design.data(), transposed.data(), out.data(), index.data(), width, height, count);
    expect(count == terms || (status == 2 && design.untouched() && out.untouched()), "other numbers of terms give 2");
}

void polynomial(input &in)
{
    const uint16_t in_width = in.take<uint16_t>();
    const uint16_t in_height = in.take<uint16_t>();
    const uint16_t width = in.size(4 * most_side);
    const uint16_t height = in.size(4 * most_side);
    const uint32_t ignored = in.take<uint16_t>();
    const exact<float> coefficients(width * height == 0 ? 0 : terms);
    fuzz::fill(coefficients.elements(), in.rest());
    const exact<float> out(size_t{width} * height);
    do_polynomial_upscale(out.data(), coefficients.data(), in_width, in_height, ignored << 16 | width, height);
}

void polynomial_fit(input &in)
{
    const uint16_t in_width = in.size(most_side);
    const uint16_t in_height = in.size(most_side);
    const uint16_t width = in.size(2 * most_side);
    const uint16_t height = in.size(2 * most_side);
    const auto count = static_cast<uint16_t>(in.size(10) == 1 ? in.take<uint16_t>() : terms);
    const size_t samples = size_t{in_width} * in_height;
    const exact<float> basis(terms * samples);
    const exact<float> lu(terms * terms);
    const exact<uint32_t> order(terms);
    const exact<float> grids[] = {exact<float>(samples), exact<float>(samples), exact<float>(samples),
                                  exact<float>(samples)};
    const size_t outputs = size_t{width} * height;
    const exact<float> out[] = {exact<float>(outputs), exact<float>(outputs), exact<float>(outputs),
                                exact<float>(outputs)};
    fuzz::fill(basis.elements(), in.rest());
    fuzz::fill(lu.elements(), in.rest());
    const exact<const float *> from(4);
    const exact<float *> to(4);
    for (size_t i = 0; i < 4; ++i) {
        fuzz::fill(grids[i].elements(), in.rest());
        from[i] = grids[i].data();
        to[i] = out[i].data();
    }
    const uint32_t status = lsc_polynomial_upscale_float(basis.data(), lu.data(), order.data(), from.data(), to.data(),
                                                         in_width, in_height, width, height, count);
    expect(count == terms || (status == 2 && out[0].untouched()), "other numbers of terms give 2");
}

void gain_table(input &in)
{
    const auto gain = in.take<uint16_t>();
    const int32_t values = signed_size(in);
    const int32_t rows = signed_size(in);
    const bool empty = values <= 0 || rows <= 0;
    const exact<int32_t> table(empty ? 0 : static_cast<size_t>(values + 1) * static_cast<size_t>(rows));
    fuzz::fill(table.elements(), in.rest());
    const exact<uint32_t> out(values > 0 ? static_cast<size_t>(values) : 0);
    compute_generic_params(gain, table.data(), values, rows, out.data());
    expect(!empty || out.untouched(), "a table without rows or values writes nothing");
}

void line(input &in)
{
    const auto p = in.take<std::array<int32_t, 5>>();
    expect(interpolate_linear(p[0], p[1], p[2], p[3], p[0]) == p[2] || p[0] != p[1], "a point gives its own value");
    interpolate_linear(p[0], p[1], p[2], p[3], p[4]);
    const uint32_t bits = calc_shifter(in.take<uint32_t>());
    expect(bits <= 32, "a word has at most 32 significant bits");
}

void checksum(input &in)
{
    const size_t offset = in.size(8);
    const exact<uint8_t> block(in.rest().size());
    fuzz::fill(block.elements(), in.rest());
    const size_t first = std::min(offset, block.size());
    get_checksum(block.data() + first, static_cast<uint32_t>(block.size() - first));
}

constexpr void (*routines[])(input &) = {
    transposition,
    product,
    factorisation,
    factorisation_of_a_large_matrix,
    polynomial_basis,
    polynomial,
    polynomial_fit,
    gain_table,
    line,
    checksum,
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    input in(bytes, size);
    const auto routine = in.take<uint8_t>();
    const auto failing = in.take<uint8_t>(); // 1 to 8: that allocation
    const long before = faults::live_blocks();
    faults::fail_allocation(failing >= 1 && failing <= 8 ? failing - 1 : faults::never);
    routines[routine % std::size(routines)](in);
    faults::fail_allocation(faults::never);
    expect(faults::live_blocks() == before, "routines free what they allocate");
    return 0;
}
