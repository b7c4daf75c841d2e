#include <array>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_faults.h"
#include "qz_isp/matrix.h"
#include "qz_isp/polynomial.h"

namespace {

using floats = std::vector<float>;

TEST(matrix_faults, work_copy)
{
    const floats a(9, 1.0f);
    floats out(9, 7.0f);
    std::array<uint32_t, 3> index = {7, 7, 7};
    faults::fail_allocation(0);
    EXPECT_EQ(lu_decomposition_m(a.data(), 12, 4, index.data(), out.data(), 12, 4, 0), 0u);
    EXPECT_EQ(lu_decomposition_m(a.data(), 12, 4, index.data(), out.data(), 12, 4, 3), 4u);
    EXPECT_EQ(out, floats(9, 7.0f));
    EXPECT_EQ(index, (std::array<uint32_t, 3>{7, 7, 7}));
    EXPECT_EQ(lu_decomposition_m(a.data(), 12, 4, index.data(), out.data(), 12, 4, 3), 0u);
    EXPECT_EQ(faults::live_blocks(), 0);
}

TEST(matrix_faults, normal_matrix_then_its_work_copy)
{
    constexpr uint32_t statuses[] = {4, 2, 0};
    for (long failing = 0; failing < 3; ++failing) {
        floats design(90, 7.0f), transposed(90, 7.0f), out(225, 7.0f);
        std::array<uint32_t, 15> index = {};
        faults::fail_allocation(failing);
        EXPECT_EQ(lu_decomposition(design.data(), transposed.data(), out.data(), index.data(), 3, 2, 15),
                  statuses[failing]);
        EXPECT_EQ(faults::live_blocks(), 0);
        EXPECT_EQ(faults::allocations(), failing == 0 ? 1 : 2);
        EXPECT_EQ(design == floats(90, 7.0f), failing == 0);
        EXPECT_EQ(transposed == floats(90, 7.0f), failing == 0);
        EXPECT_EQ(out == floats(225, 7.0f), failing < 2);
    }
}

TEST(matrix_faults, channels_before_the_failing_one_stay_written)
{
    const floats basis(15, 1.0f), lu(225, 1.0f), grid(1, 1.0f);
    const float *in[4] = {grid.data(), grid.data(), grid.data(), grid.data()};
    for (long failing = 0; failing <= 6; ++failing) {
        std::array<floats, 4> out;
        out.fill(floats(4, 7.0f));
        float *to[4] = {out[0].data(), out[1].data(), out[2].data(), out[3].data()};
        faults::fail_allocation(failing);
        EXPECT_EQ(lsc_polynomial_upscale_float(basis.data(), lu.data(), nullptr, in, to, 1, 1, 2, 2, 15),
                  failing < 6 ? 2u : 0u);
        EXPECT_EQ(faults::live_blocks(), 0);
        for (long c = 0; c < 4; ++c)
            EXPECT_EQ(out[static_cast<size_t>(c)] == floats(4, 7.0f), c >= failing - 2) << failing << ' ' << c;
    }
    EXPECT_EQ(faults::allocations(), 6);
}

} // namespace
