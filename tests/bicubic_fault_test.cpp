#include <cstdint>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_faults.h"
#include "qz_isp/bicubic.h"

namespace {

const std::vector<float> floats(16, 1.0f);
const std::vector<uint8_t> bytes(16, 1);
const float *const float_plane = floats.data();
const uint8_t *const byte_plane = bytes.data();

constexpr struct {
    const char *name;
    long allocations;
    const char *log;
    uint32_t (*call)(uint16_t *p10, float *values);
} routines[] = {
    {"resize", 1, "",
     [](uint16_t *p10, float *) { return bicubic_resize_32f_to_u16p10(float_plane, 4, 4, p10, 8, 8); }},
    {"resize, no rows", 1, "",
     [](uint16_t *p10, float *) { return bicubic_resize_32f_to_u16p10(float_plane, 4, 4, p10, 0, 8); }},
    {"u8", 2, "qz[0] QZ_ALLOC failed\n",
     [](uint16_t *, float *out) { return image_bicubic_upscale_uint8_to_float(&byte_plane, &out, 4, 4, 8, 8, 1); }},
    {"u16, no planes", 2, "qz[0] QZ_ALLOC failed\n",
     [](uint16_t *, float *) { return image_bicubic_upscale_uint16_to_float(nullptr, nullptr, 4, 4, 8, 8, 0); }},
    {"area average", 0, "",
     [](uint16_t *p10, float *) { return image_downscale_32f_to_u16p10(&float_plane, &p10, 4, 4, 3, 3, 1, nullptr); }},
};

TEST(bicubic_faults, each_failed_allocation_writes_nothing_and_leaks_nothing)
{
    for (const auto &r : routines)
        for (long n = 0; n <= r.allocations; ++n) {
            const bool failed = n < r.allocations;
            std::vector<uint16_t> p10(64, 7);
            std::vector<float> values(64, 7.0f);
            faults::fail_allocation(n);
            testing::internal::CaptureStderr();
            EXPECT_EQ(r.call(p10.data(), values.data()), failed ? 4u : 0u) << r.name << ' ' << n;
            EXPECT_EQ(testing::internal::GetCapturedStderr(), failed ? r.log : "") << r.name << ' ' << n;
            EXPECT_EQ(faults::live_blocks(), 0) << r.name << ' ' << n;
            EXPECT_TRUE(!failed || (p10 == std::vector<uint16_t>(64, 7) && values == std::vector<float>(64, 7.0f)));
        }
    faults::fail_allocation(faults::never);
    if constexpr (sizeof(size_t) == 4) { // 32768^2 floats are 2^32 bytes
        EXPECT_EQ(bicubic_resize_32f_to_u16p10(nullptr, 32765, 32765, nullptr, 2, 2), 4u);
    }
}

} // namespace
