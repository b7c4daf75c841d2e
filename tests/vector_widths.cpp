// Main program of suites whose routines have a version for each vector width: it runs all tests once for each width up
// to the machine's own. The call that finds out how wide vectors are is wrapped by the linker.
#include <algorithm>
#include <cstdio>

#include <gtest/gtest.h>

extern "C" int __real_qz_vector_bits(); // NOLINT: the linker's name

namespace {

int most_bits = 128;

class width_of_iteration : public testing::EmptyTestEventListener {
    void OnTestIterationStart(const testing::UnitTest & /*all*/, int iteration) override
    {
        most_bits = 128 << iteration;
        std::printf("Vectors of at most %d bits\n", most_bits);
    }
};

} // namespace

extern "C" int __wrap_qz_vector_bits() // NOLINT: the linker's name
{
    return std::min(most_bits, __real_qz_vector_bits());
}

int main(int argc, char **argv)
{
    testing::InitGoogleTest(&argc, argv);
    testing::UnitTest::GetInstance()->listeners().Append(new width_of_iteration);
    const int bits = __real_qz_vector_bits();
    GTEST_FLAG_SET(repeat, bits == 512 ? 3 : bits == 256 ? 2 : 1);
    return RUN_ALL_TESTS();
}
