#include <array>
#include <bit>
#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/matrix.h"
#include "strided_matrix.h"

namespace {

using floats = std::vector<float>;

uint32_t transpose(strided_matrix &from, strided_matrix &to)
{
    return transpose_m(from.data(), from.row_stride, from.column_stride, from.columns, from.rows, to.data(),
                       to.row_stride, to.column_stride);
}

uint32_t multiply(strided_matrix &a, strided_matrix &b, strided_matrix &c)
{
    return mul_mm(a.data(), a.row_stride, a.column_stride, a.columns, a.rows, b.data(), b.row_stride, b.column_stride,
                  b.columns, b.rows, c.data(), c.row_stride, c.column_stride);
}

uint32_t factorise(strided_matrix &a, std::vector<uint32_t> &index, strided_matrix &out)
{
    return lu_decomposition_m(a.data(), a.row_stride, a.column_stride, index.data(), out.data(), out.row_stride,
                              out.column_stride, a.rows);
}

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
    constexpr std::array<std::array<int, 2>, 9> shapes = {
        {{1, 1}, {2, 3}, {1, 70}, {65, 1}, {8, 8}, {16, 48}, {17, 33}, {64, 64}, {70, 129}}};
    for (const auto &[rows, columns] : shapes) {
        for (const layout from : every_layout) {
            for (const layout to : every_layout) {
                strided_matrix source(rows, columns, from);
                strided_matrix target(columns, rows, to);
                source.fill(random);
                EXPECT_EQ(transpose(source, target), 0u);
                EXPECT_TRUE(target.padding_untouched());
                for (int r = 0; r < rows; ++r)
                    for (int c = 0; c < columns; ++c)
                        ASSERT_EQ(target.at(c, r), source.at(r, c)) << rows << 'x' << columns << ' ' << int(from);
            }
        }
    }
}

TEST(transpose_m, writes_nothing_without_rows_or_columns)
{
    strided_matrix source(2, 2, layout::dense);
    strided_matrix target(2, 2, layout::dense);
    for (const auto &[columns, rows] : {std::array{2, 0}, {2, -1}, {0, 2}, {-1, 2}})
        EXPECT_EQ(transpose_m(source.data(), 8, 4, columns, rows, target.data(), 8, 4), 0u);
    EXPECT_TRUE(target.untouched());
}

TEST(transpose_m, last_element_of_a_row_stays_where_targets_share_an_address)
{
    const floats source = {1, 2, 3, 4, 5, 6};
    floats target(3, 0.0f);
    transpose_m(source.data(), 12, 4, 3, 2, target.data(), 4, 0);
    EXPECT_EQ(target, (floats{4, 5, 6}));
}

TEST(mul_mm, products_worked_by_hand)
{
    const floats a = {1, 2, 3, 4, 5, 6};
    floats c(4, -1.0f);
    EXPECT_EQ(mul_mm(a.data(), 12, 4, 3, 1, a.data(), 4, 4, 1, 3, c.data(), 4, 4), 0u);
    EXPECT_EQ(c[0], 14.0f);
    EXPECT_EQ(mul_mm(a.data(), 12, 4, 3, 2, a.data(), 8, 4, 2, 3, c.data(), 8, 4), 0u);
    EXPECT_EQ(c, (floats{22, 28, 49, 64}));
}

TEST(mul_mm, sizes_that_do_not_match_and_empty_ones)
{
    strided_matrix c(2, 2, layout::dense);
    const floats a(6, 1.0f);
    EXPECT_EQ(mul_mm(a.data(), 12, 4, 3, 2, a.data(), 12, 4, 3, 2, c.data(), 8, 4), 32u);
    EXPECT_EQ(mul_mm(a.data(), 12, 4, 3, 0, a.data(), 4, 4, 1, 3, c.data(), 8, 4), 0u);
    EXPECT_EQ(mul_mm(a.data(), 12, 4, 3, -2, a.data(), 8, 4, 2, 3, c.data(), 8, 4), 0u);
    EXPECT_EQ(mul_mm(a.data(), 12, 4, 3, 2, a.data(), 8, 4, -2, 3, c.data(), 8, 4), 0u);
    EXPECT_TRUE(c.untouched());
    EXPECT_EQ(mul_mm(a.data(), 0, 4, 0, 2, a.data(), 8, 4, 2, 0, c.data(), 8, 4), 0u);
    EXPECT_EQ(bits(c), (std::vector<uint32_t>{0, 0, 0, 0}));
}

TEST(mul_mm, sums_in_order_from_zero_and_rounds_every_product)
{
    const floats a = {1e8f, 1.0f, -1e8f};
    const floats ones = {1.0f, 1.0f, 1.0f};
    float c = -1.0f;
    mul_mm(a.data(), 12, 4, 3, 1, ones.data(), 4, 4, 1, 3, &c, 4, 4);
    EXPECT_EQ(c, 0.0f); // 1e8 + 1 is 1e8 in single precision

    const floats x = {-1.0f, 1.0f + 0x1p-12f};
    const floats y = {1.0f, 1.0f + 0x1p-12f};
    mul_mm(x.data(), 8, 4, 2, 1, y.data(), 4, 4, 1, 2, &c, 4, 4);
    EXPECT_EQ(c, 0x1p-11f); // a fused step would keep 2^-24

    const float negative_zero = -0.0f;
    mul_mm(&negative_zero, 4, 4, 1, 1, ones.data(), 4, 4, 1, 1, &c, 4, 4);
    EXPECT_FALSE(std::signbit(c)); // 0 + -0
}

TEST(mul_mm, every_shape_and_layout_gives_the_bits_of_outer_products)
{
    std::mt19937 random(2);
    constexpr std::array<std::array<int, 3>, 15> shapes = {{{1, 1, 1},
                                                            {2, 3, 5},
                                                            {15, 40, 15},
                                                            {15, 300, 15},
                                                            {64, 64, 64},
                                                            {5, 300, 17},
                                                            {33, 7, 31},
                                                            {1, 19, 90},
                                                            {90, 19, 1},
                                                            {16, 256, 16},
                                                            {23, 1, 47},
                                                            {70, 16, 100},
                                                            {8, 257, 32},
                                                            {81, 129, 33},
                                                            {4, 8, 150}}};
    for (const auto &[rows, inner, columns] : shapes) {
        for (const layout how : every_layout) {
            strided_matrix a(rows, inner, every_layout[random() % 7]);
            strided_matrix b(inner, columns, how);
            strided_matrix c(rows, columns, every_layout[random() % 7]);
            a.fill(random);
            b.fill(random);
            EXPECT_EQ(multiply(a, b, c), 0u);
            EXPECT_TRUE(c.padding_untouched());
            EXPECT_EQ(bits(c), bits(outer_products(a, b))) << rows << 'x' << inner << 'x' << columns;
        }
    }
}

TEST(mul_mm, last_row_stays_where_rows_of_the_product_share_addresses)
{
    const floats a = {1, 2, 3, 4};
    floats c(2);
    EXPECT_EQ(mul_mm(a.data(), 8, 4, 2, 2, a.data(), 8, 4, 2, 2, c.data(), 0, 4), 0u);
    EXPECT_EQ(c, (floats{15, 22}));
}

TEST(lu_decomposition_m, factors_worked_by_hand)
{
    floats a = {4, 3, 6, 3};
    std::array<uint32_t, 2> index = {7, 7};
    floats out(4);
    EXPECT_EQ(lu_decomposition_m(a.data(), 8, 4, index.data(), out.data(), 8, 4, 2), 0u);
    EXPECT_EQ(out, (floats{4, 3, 1.5, -1.5}));
    EXPECT_EQ(index, (std::array<uint32_t, 2>{0, 1}));
    EXPECT_EQ(lu_decomposition_m(a.data(), 4, 8, index.data(), out.data(), 8, 4, 2), 0u); // of the transpose
    EXPECT_EQ(out, (floats{4, 6, 0.75, -1.5}));
    EXPECT_EQ(lu_decomposition_m(a.data(), 4, 4, index.data(), out.data(), 8, 4, 2), 0u); // of 4 3, 3 6
    EXPECT_EQ(out, (floats{4, 3, 0.75, 3.75}));
    EXPECT_EQ(lu_decomposition_m(a.data(), 8, 4, index.data(), a.data(), 8, 4, 2), 0u); // in place
    EXPECT_EQ(a, (floats{4, 3, 1.5, -1.5}));
}

TEST(lu_decomposition_m, every_size_and_layout_gives_the_bits_of_element_by_element_factors)
{
    std::mt19937 random(3);
    for (const int n : {1, 2, 3, 7, 15, 16, 17, 31, 32, 33, 48, 63, 100, 128, 131}) {
        for (const layout how : every_layout) {
            strided_matrix a(n, n, n % 2 != 0 && how == layout::transposed ? layout::transposed : layout::dense);
            strided_matrix out(n, n, how);
            std::vector<uint32_t> index(static_cast<size_t>(n), 77);
            a.fill(random);
            const std::vector<uint32_t> before = bits(a);
            EXPECT_EQ(factorise(a, index, out), 0u);
            EXPECT_EQ(bits(a), before);
            EXPECT_TRUE(out.padding_untouched());
            EXPECT_EQ(bits(out), bits(factors_one_by_one(a))) << n << ' ' << int(how);
            for (int k = 0; k < n; ++k)
                EXPECT_EQ(index[static_cast<size_t>(k)], static_cast<uint32_t>(k));
        }
    }
}

TEST(lu_decomposition_m, zero_pivot_spreads_and_still_succeeds)
{
    strided_matrix a(33, 33, layout::dense);
    std::mt19937 random(4);
    a.fill(random);
    a.set(0, 0, 0.0f);
    strided_matrix out(33, 33, layout::dense);
    std::vector<uint32_t> index(33);
    EXPECT_EQ(factorise(a, index, out), 0u);
    EXPECT_TRUE(std::isinf(out.at(32, 0)));
    EXPECT_EQ(bits(out), bits(factors_one_by_one(a)));
}

TEST(lu_decomposition_m, sizes_and_strides_that_cannot_be_worked_on)
{
    const float a = 1.0f;
    uint32_t index = 77;
    strided_matrix out(1, 1, layout::dense);
    EXPECT_EQ(lu_decomposition_m(&a, 0, 4, &index, out.data(), 0, 4, 0), 0u);
    EXPECT_EQ(lu_decomposition_m(&a, 4, 4, &index, out.data(), 4, 4, -2), 0u);
    EXPECT_EQ(lu_decomposition_m(&a, 131072, 4, &index, out.data(), 131072, 4, 32768), 4u);
    EXPECT_EQ(lu_decomposition_m(&a, 12, 4, &index, out.data(), 8, 4, 2), 32u); // would leave the work copy
    EXPECT_EQ(lu_decomposition_m(&a, -8, 4, &index, out.data(), 8, 4, 2), 32u);
    EXPECT_TRUE(out.untouched());
    EXPECT_EQ(index, 77u);
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
    for (const auto &[width, height] :
         {std::array<uint16_t, 2>{1, 1}, {17, 13}, {63, 47}, {64, 64}, {65, 5}, {300, 3}}) {
        normal_fit fit(width, height);
        const int points = width * height;
        for (int p = 0; p < points; ++p)
            for (int k = 0; k < 15; ++k)
                ASSERT_EQ(fit.transposed[static_cast<size_t>(k * points + p)],
                          fit.design[static_cast<size_t>(p * 15 + k)]);
        strided_matrix terms(15, points, layout::dense);
        strided_matrix normal(15, 15, layout::dense);
        strided_matrix out(15, 15, layout::dense);
        std::memcpy(terms.data(), fit.transposed.data(), fit.transposed.size() * sizeof(float));
        mul_mm(terms.data(), points * 4, 4, points, 15, terms.data(), 4, points * 4, 15, points, normal.data(), 60, 4);
        std::memcpy(out.data(), fit.out.data(), 225 * sizeof(float));
        EXPECT_EQ(bits(out), bits(factors_one_by_one(normal))) << width << 'x' << height;
        EXPECT_EQ(fit.status, 0u);
        EXPECT_EQ(fit.index[14], 14u);
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
