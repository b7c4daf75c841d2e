#include <array>
#include <bit>
#include <cmath>
#include <numeric>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/matrix.h"
#include "tests/strided_matrix.h"

namespace {

using floats = std::vector<float>;

// Row-major values with the same bits, any not-a-number like any other.
std::vector<uint32_t> bits(const strided_matrix &m)
{
    std::vector<uint32_t> all;
    for (int r = 0; r < m.rows; ++r)
        for (int c = 0; c < m.columns; ++c)
            all.push_back(std::isnan(m.at(r, c)) ? 0x7fc00000u : std::bit_cast<uint32_t>(m.at(r, c)));
    return all;
}

// The same product as a sum of outer products: every element still takes its terms in order of k.
strided_matrix outer_products(const strided_matrix &a, const strided_matrix &b)
{
    strided_matrix c(a.rows, b.columns, layout::dense);
    for (int k = -1; k < a.columns; ++k)
        for (int i = 0; i < c.rows; ++i)
            for (int j = 0; j < c.columns; ++j)
                c.set(i, j, k < 0 ? 0.0f : c.at(i, j) + a.at(i, k) * b.at(k, j));
    return c;
}

// Each element of the factors on its own, from the factors left of it and above it.
strided_matrix factors_one_by_one(const strided_matrix &a)
{
    strided_matrix lu(a.rows, a.rows, layout::dense);
    for (int r = 0; r < a.rows; ++r) {
        for (int c = 0; c < a.rows; ++c) {
            float value = a.at(r, c);
            for (int k = 0; k < std::min(r, c); ++k)
                value -= lu.at(r, k) * lu.at(k, c);
            lu.set(r, c, r > c ? value / lu.at(c, c) : value);
        }
    }
    return lu;
}

TEST(transpose_m, moves_every_element_and_nothing_else_in_every_layout)
{
    std::mt19937 random(1);
    constexpr int shapes[][2] = {{1, 1}, {2, 3}, {1, 70}, {65, 1}, {16, 48}, {17, 33}, {64, 64}, {70, 129}};
    for (const auto &[rows, columns] : shapes)
        for (const layout from : every_layout)
            for (const layout to : every_layout) {
                strided_matrix source(rows, columns, from);
                strided_matrix target(columns, rows, to);
                source.fill(random);
                EXPECT_EQ(transpose_m(source.data(), source.row_stride, source.column_stride, columns, rows,
                                      target.data(), target.row_stride, target.column_stride),
                          0u);
                EXPECT_TRUE(target.padding_untouched());
                for (int r = 0; r < rows; ++r)
                    for (int c = 0; c < columns; ++c)
                        ASSERT_EQ(target.at(c, r), source.at(r, c)) << rows << 'x' << columns << ' ' << int(from);
            }
}

TEST(transpose_m, writes_in_order_where_elements_share_an_address)
{
    const floats source = {1, 2, 3, 4, 5, 6};
    constexpr std::pair<int32_t, std::array<float, 4>> cases[] = {{0, {4, 5, 6, 7}}, {4, {1, 4, 5, 6}}};
    for (const auto &[column_stride, expected] : cases) {
        std::array<float, 4> target = {7, 7, 7, 7};
        transpose_m(source.data(), 12, 4, 3, 2, target.data(), 4, column_stride);
        EXPECT_EQ(target, expected);
    }
    floats in_place = {1, 2, 3, 4};
    transpose_m(in_place.data(), 8, 4, 2, 2, in_place.data(), 8, 4);
    EXPECT_EQ(in_place, (floats{1, 2, 2, 4}));
}

TEST(mul_mm, sizes_that_do_not_match_empty_ones_and_shared_rows)
{
    constexpr struct {
        int32_t a_columns, a_rows, b_columns, b_rows, c_row_stride;
        uint32_t status;
        std::array<float, 4> c;
    } cases[] = {
        {3, 2, 3, 2, 8, 32, {7, 7, 7, 7}},  {3, 0, 1, 3, 8, 0, {7, 7, 7, 7}}, {3, -2, 2, 3, 8, 0, {7, 7, 7, 7}},
        {3, 2, -2, 3, 8, 0, {7, 7, 7, 7}},  {0, 2, 2, 0, 8, 0, {0, 0, 0, 0}}, {3, 2, 2, 3, 8, 0, {22, 28, 49, 64}},
        {3, 2, 2, 3, 0, 0, {49, 64, 7, 7}}, // the last row stays
    };
    const floats a = {1, 2, 3, 4, 5, 6};
    for (const auto &t : cases) {
        std::array<float, 4> c = {7, 7, 7, 7};
        EXPECT_EQ(mul_mm(a.data(), 12, 4, t.a_columns, t.a_rows, a.data(), 8, 4, t.b_columns, t.b_rows, c.data(),
                         t.c_row_stride, 4),
                  t.status);
        EXPECT_EQ(c, t.c) << t.a_columns << ' ' << t.a_rows << ' ' << t.b_columns << ' ' << t.c_row_stride;
    }
    constexpr std::pair<size_t, std::array<float, 4>> places[] = {
        {0, {19, 22, 43, 50}}, {4, {19, 130, 43, 290}}, {8, {19, 22, 85, 98}}}; // before A, over A, over B
    for (const auto &[at, product] : places) {
        std::array<float, 12> memory = {7, 7, 7, 7, 1, 2, 3, 4, 5, 6, 7, 8};
        mul_mm(memory.data() + 4, 8, 4, 2, 2, memory.data() + 8, 8, 4, 2, 2, memory.data() + at, 8, 4);
        EXPECT_TRUE(std::equal(product.begin(), product.end(), memory.begin() + at)) << at;
    }
    const float negative_zero = -0.0f;
    float sum = -1.0f;
    mul_mm(&negative_zero, 4, 4, 1, 1, a.data(), 4, 4, 1, 1, &sum, 4, 4);
    EXPECT_FALSE(std::signbit(sum)); // 0 + -0
}

TEST(mul_mm, every_shape_and_layout_gives_the_bits_of_outer_products)
{
    std::mt19937 random(2);
    constexpr int shapes[][3] = {{1, 1, 1},     {2, 3, 5},    {15, 300, 15}, {64, 64, 64},  {5, 300, 17},
                                 {33, 7, 31},   {1, 19, 90},  {90, 19, 1},   {16, 256, 16}, {23, 1, 47},
                                 {70, 16, 100}, {8, 257, 32}, {81, 129, 33}, {4, 8, 150}};
    for (const auto &[rows, inner, columns] : shapes)
        for (const layout how : every_layout) {
            strided_matrix a(rows, inner, every_layout[random() % 7]);
            strided_matrix b(inner, columns, how);
            strided_matrix c(rows, columns, every_layout[random() % 7]);
            a.fill(random);
            b.fill(random);
            EXPECT_EQ(mul_mm(a.data(), a.row_stride, a.column_stride, inner, rows, b.data(), b.row_stride,
                             b.column_stride, columns, inner, c.data(), c.row_stride, c.column_stride),
                      0u);
            EXPECT_TRUE(c.padding_untouched());
            EXPECT_EQ(bits(c), bits(outer_products(a, b))) << rows << 'x' << inner << 'x' << columns;
        }
}

TEST(lu_decomposition_m, factors_worked_by_hand)
{
    const struct {
        int32_t n, row_stride, column_stride, out_row_stride;
        floats a, factors;
    } cases[] = {{2, 8, 4, 8, {4, 3, 6, 3}, {4, 3, 1.5, -1.5}},
                 {2, 4, 8, 8, {4, 3, 6, 3}, {4, 6, 0.75, -1.5}}, // of the transpose
                 {2, 4, 4, 8, {4, 3, 6, 3}, {4, 3, 0.75, 3.75}}, // of 4 3, 3 6
                 {2, 8, 4, 0, {4, 3, 6, 3}, {1.5, -1.5, 6, 3}},  // rows of factors that share their place
                 // Elements that share a place are worked on once for each.
                 {3, 4, 4, 12, {1, 2, 3, 4, 5, 0, 0, 0, 0}, {1, 2, 3, 2, -1, -8, 3, 8, 60}}};
    for (const auto &c : cases) {
        floats a = c.a;
        std::array<uint32_t, 3> index = {7, 7, 7};
        EXPECT_EQ(lu_decomposition_m(a.data(), c.row_stride, c.column_stride, index.data(), a.data(), c.out_row_stride,
                                     4, c.n),
                  0u);
        EXPECT_EQ(a, c.factors); // in place
    }
}

TEST(lu_decomposition_m, every_size_and_layout_gives_the_bits_of_element_by_element_factors)
{
    std::mt19937 random(3);
    for (const int n : {1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 48, 63, 100, 128, 131})
        for (const layout how : every_layout) {
            strided_matrix a(n, n, n % 2 != 0 && how == layout::transposed ? layout::transposed : layout::dense);
            strided_matrix out(n, n, how);
            std::vector<uint32_t> index(static_cast<size_t>(n), 77);
            std::vector<uint32_t> in_order(index.size());
            std::iota(in_order.begin(), in_order.end(), 0u);
            a.fill(random);
            if (how == layout::padded)
                a.set(0, 0, 0.0f); // a pivot of zero spreads
            const std::vector<uint32_t> before = bits(a);
            EXPECT_EQ(lu_decomposition_m(a.data(), a.row_stride, a.column_stride, index.data(), out.data(),
                                         out.row_stride, out.column_stride, n),
                      0u);
            EXPECT_EQ(bits(a), before);
            EXPECT_TRUE(out.padding_untouched());
            EXPECT_EQ(bits(out), bits(factors_one_by_one(a))) << n << ' ' << int(how);
            EXPECT_EQ(index, in_order);
        }
}

TEST(lu_decomposition_m, sizes_and_strides_that_cannot_be_worked_on)
{
    constexpr struct {
        int32_t row_stride, column_stride, size;
        uint32_t status;
    } cases[] = {{0, 4, 0, 0},   {4, 4, -2, 0},  {131072, 4, 32768, 4},
                 {12, 4, 2, 32}, {-8, 4, 2, 32}, {8, -4, 2, 32}}; // 12: would leave the work copy
    const float a = 1.0f;
    for (const auto &c : cases) {
        uint32_t index = 77;
        float out = 7.0f;
        EXPECT_EQ(lu_decomposition_m(&a, c.row_stride, c.column_stride, &index, &out, 8, 4, c.size), c.status)
            << c.row_stride;
        EXPECT_EQ(out, 7.0f);
        EXPECT_EQ(index, 77u);
    }
}

struct normal_fit {
    normal_fit(uint16_t width, uint16_t height)
        : design(size_t{15} * width * height), transposed(design.size()), out(225), index(15),
          status(lu_decomposition(design.data(), transposed.data(), out.data(), index.data(), width, height, 15))
    {}

    floats design, transposed, out;
    std::vector<uint32_t> index;
    uint32_t status;
};

TEST(lu_decomposition, design_rows_worked_by_hand)
{
    EXPECT_EQ(normal_fit(1, 1).design, floats(15, 1.0f));
    const normal_fit fit(3, 2);
    EXPECT_EQ(floats(fit.design.end() - 15, fit.design.end()),
              (floats{1, 3, 2, 9, 6, 4, 27, 18, 12, 8, 81, 54, 36, 24, 16}));
    // Powers of 65535 = 2^16 - 1 modulo 2^32, read as signed.
    const normal_fit tall(1, 65535);
    EXPECT_EQ(floats(tall.design.end() - 15, tall.design.end()),
              (floats{1, 1, 65535, 1, 65535, -131071, 1, 65535, -131071, 196607, 1, 65535, -131071, 196607, -262143}));
    EXPECT_EQ(tall.status, 0u);
}

TEST(lu_decomposition, leaves_transpose_and_factors_of_the_normal_matrix)
{
    constexpr uint16_t grids[][2] = {{1, 1}, {17, 13}, {63, 47}, {64, 64}, {65, 5}, {300, 3}};
    for (const auto &[width, height] : grids) {
        const normal_fit fit(width, height);
        const int points = width * height;
        floats transposed(fit.design.size()), normal(225), factors(225);
        std::vector<uint32_t> index(15);
        transpose_m(fit.design.data(), 60, 4, 15, points, transposed.data(), 4 * points, 4);
        mul_mm(transposed.data(), 4 * points, 4, points, 15, fit.design.data(), 60, 4, 15, points, normal.data(), 60,
               4);
        lu_decomposition_m(normal.data(), 60, 4, index.data(), factors.data(), 60, 4, 15);
        EXPECT_EQ(fit.transposed, transposed);
        EXPECT_EQ(std::memcmp(fit.out.data(), factors.data(), 900), 0) << width << 'x' << height;
        EXPECT_EQ(fit.index, index);
        EXPECT_EQ(fit.status, 0u);
    }
}

TEST(lu_decomposition, any_other_term_count_writes_nothing)
{
    floats design(16, 7.0f);
    uint32_t index = 77;
    for (const uint16_t terms : {uint16_t{0}, uint16_t{14}, uint16_t{16}})
        EXPECT_EQ(lu_decomposition(design.data(), design.data(), design.data(), &index, 1, 1, terms), 2u);
    EXPECT_EQ(design, floats(16, 7.0f));
    EXPECT_EQ(index, 77u);
}

} // namespace
