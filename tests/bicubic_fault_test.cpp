#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "allocation_faults.h"
#include "qz_isp/bicubic.h"

namespace {

constexpr size_t dst_bytes = 8 * 8 * sizeof(float);

struct routine {
    const char *name;
    long allocations;
    const char *log;
    std::function<uint32_t(void *dst)> call;
};

const std::vector<float> floats(16, 1.0f);
const std::vector<uint8_t> bytes(16, 1);
const std::vector<uint16_t> words(16, 1);

const routine routines[] = {
    {"resize", 1, "",
     [](void *dst) { return bicubic_resize_32f_to_u16p10(floats.data(), 4, 4, static_cast<uint16_t *>(dst), 8, 8); }},
    {"no rows", 1, "",
     [](void *dst) { return bicubic_resize_32f_to_u16p10(floats.data(), 4, 4, static_cast<uint16_t *>(dst), 0, 8); }},
    {"u8", 2, "qz[0] QZ_ALLOC failed\n",
     [](void *dst) {
         const uint8_t *src = bytes.data();
         auto *out = static_cast<float *>(dst);
         return image_bicubic_upscale_uint8_to_float(&src, &out, 4, 4, 8, 8, 1);
     }},
    {"u16", 2, "qz[0] QZ_ALLOC failed\n",
     [](void *dst) {
         const uint16_t *src = words.data();
         auto *out = static_cast<float *>(dst);
         return image_bicubic_upscale_uint16_to_float(&src, &out, 4, 4, 8, 8, 1);
     }},
    {"no planes", 2, "qz[0] QZ_ALLOC failed\n",
     [](void *) { return image_bicubic_upscale_uint16_to_float(nullptr, nullptr, 4, 4, 8, 8, 0); }},
    {"area average", 0, "",
     [](void *dst) {
         const float *src = floats.data();
         auto *out = static_cast<uint16_t *>(dst);
         return image_downscale_32f_to_u16p10(&src, &out, 4, 4, 3, 3, 1, nullptr);
     }},
};

TEST(bicubic_faults, each_failed_allocation_writes_nothing_and_leaks_nothing)
{
    for (const routine &r : routines) {
        for (long n = 0; n <= r.allocations; ++n) {
            std::vector<unsigned char> dst(dst_bytes, 0xa5);
            faults::fail_allocation(n);
            testing::internal::CaptureStderr();
            const uint32_t status = r.call(dst.data());
            const std::string logged = testing::internal::GetCapturedStderr();
            const bool failed = n < r.allocations;
            EXPECT_EQ(status, failed ? 4u : 0u) << r.name << ' ' << n;
            EXPECT_EQ(logged, failed ? r.log : "") << r.name;
            EXPECT_EQ(faults::live_blocks(), 0) << r.name;
            if (failed) {
                EXPECT_EQ(std::count(dst.begin(), dst.end(), 0xa5), static_cast<long>(dst_bytes)) << r.name;
            }
        }
    }
    faults::fail_allocation(faults::never);
}

TEST(bicubic_faults, a_buffer_that_no_size_can_name_counts_as_a_failed_allocation)
{
    if (sizeof(size_t) > 4)
        GTEST_SKIP() << "every size fits";
    // 32768^2 floats: the byte count is 2^32.
    uint16_t out[4] = {7, 7, 7, 7};
    faults::fail_allocation(faults::never);
    EXPECT_EQ(bicubic_resize_32f_to_u16p10(nullptr, 32765, 32765, out, 2, 2), 4u);
    EXPECT_EQ(out[0], 7);
    EXPECT_EQ(faults::live_blocks(), 0);
}

} // namespace
