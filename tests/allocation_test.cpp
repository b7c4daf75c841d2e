#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "qz_isp/bicubic.h"
#include "qz_isp/matrix.h"
#include "qz_isp/polynomial.h"
#include "tests/allocation_faults.h"
#include "tests/camera.h"

namespace {

using floats = std::vector<float>;

const floats ones(225, 1.0f);
const std::vector<uint8_t> bytes(16, 1);
const float *const plane[4] = {ones.data(), ones.data(), ones.data(), ones.data()};
const uint8_t *const byte_plane = bytes.data();

// Where the routines write; any of the vectors may be one.
struct outputs {
    std::array<floats, 4> values = {floats(225, 7.0f), floats(225, 7.0f), floats(225, 7.0f), floats(225, 7.0f)};
    std::vector<uint16_t> p10 = std::vector<uint16_t>(64, 7);
    std::vector<uint32_t> index = std::vector<uint32_t>(15, 7);
    float *to[4] = {values[0].data(), values[1].data(), values[2].data(), values[3].data()};
    uint16_t *p10_to = p10.data();

    long written() const
    {
        const outputs untouched;
        long count = (p10 != untouched.p10) + (index != untouched.index);
        for (const floats &one : values)
            count += one != untouched.values[0];
        return count;
    }
};

constexpr const char *logged = "qz[0] QZ_ALLOC failed\n";

// The status that a routine returns and the number of outputs that it has written when its allocation 0, 1, ... fails
// and, last, when none does.
const struct {
    const char *name;
    std::vector<std::pair<uint32_t, long>> outcomes;
    uint32_t (*call)(outputs &out);
    const char *log = "";
} routines[] = {
    {"resize",
     {{4, 0}, {0, 1}},
     [](outputs &out) { return bicubic_resize_32f_to_u16p10(plane[0], 4, 4, out.p10_to, 8, 8); }},
    {"resize, no rows",
     {{4, 0}, {0, 0}},
     [](outputs &out) { return bicubic_resize_32f_to_u16p10(plane[0], 4, 4, out.p10_to, 0, 8); }},
    {"u8",
     {{4, 0}, {4, 0}, {0, 1}},
     [](outputs &out) { return image_bicubic_upscale_uint8_to_float(&byte_plane, out.to, 4, 4, 8, 8, 1); },
     logged},
    {"u16, no planes",
     {{4, 0}, {4, 0}, {0, 0}},
     [](outputs &) { return image_bicubic_upscale_uint16_to_float(nullptr, nullptr, 4, 4, 8, 8, 0); },
     logged},
    {"area average",
     {{0, 1}},
     [](outputs &out) { return image_downscale_32f_to_u16p10(plane, &out.p10_to, 4, 4, 3, 3, 1, nullptr); }},
    {"matrix",
     {{4, 0}, {0, 2}},
     [](outputs &out) { return lu_decomposition_m(ones.data(), 12, 4, out.index.data(), out.to[0], 12, 4, 3); }},
    {"matrix of shared elements",
     {{4, 0}, {0, 2}},
     [](outputs &out) { return lu_decomposition_m(ones.data(), 4, 4, out.index.data(), out.to[0], 12, 4, 3); }},
    {"empty matrix",
     {{0, 0}},
     [](outputs &out) { return lu_decomposition_m(ones.data(), 12, 4, out.index.data(), out.to[0], 12, 4, 0); }},
    // The design matrix and its transpose come before the work copy.
    {"polynomial fit",
     {{4, 0}, {2, 2}, {0, 4}},
     [](outputs &out) { return lu_decomposition(out.to[0], out.to[1], out.to[2], out.index.data(), 3, 2, 15); }},
    // Channel by channel.
    {"polynomial upscale",
     {{2, 0}, {2, 0}, {2, 0}, {2, 1}, {2, 2}, {2, 3}, {0, 4}},
     [](outputs &out) {
         return lsc_polynomial_upscale_float(ones.data(), ones.data(), nullptr, plane, out.to, 1, 1, 2, 2, 15);
     }},
    {"polynomial upscale, output read again",
     {{2, 0}, {2, 0}, {2, 0}, {2, 1}, {2, 2}, {2, 3}, {0, 4}},
     [](outputs &out) {
         const float *from[4] = {plane[0], out.to[0], plane[2], plane[3]};
         return lsc_polynomial_upscale_float(ones.data(), ones.data(), nullptr, from, out.to, 1, 1, 2, 2, 15);
     }},
};

TEST(allocation_faults, of_each_routine_are_reported_and_leak_nothing)
{
    for (const auto &[name, outcomes, call, log] : routines)
        for (size_t n = 0; n < outcomes.size(); ++n) {
            SCOPED_TRACE(name + std::string(", allocation ") + std::to_string(n));
            outputs out;
            faults::fail_allocation(static_cast<long>(n));
            testing::internal::CaptureStderr();
            EXPECT_EQ(call(out), outcomes[n].first);
            EXPECT_EQ(testing::internal::GetCapturedStderr(), n + 1 < outcomes.size() ? log : "");
            EXPECT_EQ(out.written(), outcomes[n].second);
            EXPECT_EQ(faults::live_blocks(), 0);
        }
    EXPECT_EQ(faults::allocations(), 6);
    faults::fail_allocation(faults::never);
    if constexpr (sizeof(size_t) == 4) { // 32768^2 floats are 2^32 bytes
        EXPECT_EQ(bicubic_resize_32f_to_u16p10(nullptr, 32765, 32765, nullptr, 2, 2), 4u);
    }
}

TEST(allocation_faults, of_a_makernote_drop_the_record)
{
    faults::fail_allocation(0);
    EXPECT_EQ(qz_mkn_create(), nullptr);
    qz_mkn *mkn = qz_mkn_create();
    const auto added = [mkn] { return qz_mkn_add_record(mkn, QZ_MKN_TEXT, 1, "text", 4, "key"); };
    for (const long failing : {0, 1}) { // the list, the record
        faults::fail_allocation(failing);
        EXPECT_FALSE(added());
    }
    for (int i = 0; i < 64; ++i)
        EXPECT_TRUE(added());
    faults::fail_allocation(0); // the list has to grow
    EXPECT_FALSE(added());
    EXPECT_TRUE(added());
    EXPECT_EQ(qz_mkn_record_count(mkn), 65u);
    EXPECT_EQ(qz_mkn_dropped_count(mkn), 3u);
    qz_mkn_destroy(mkn);
    EXPECT_EQ(faults::live_blocks(), 0);
}

TEST(allocation_faults, of_init_and_parse_leave_nothing_behind)
{
    // Nested beyond what the walk keeps without the heap.
    test::bytes records = test::record(326, test::bytes(2));
    for (uint16_t depth = 40; depth > 0; --depth)
        records = test::join({test::set_container(depth, records, depth % 2 == 0), test::record(333, test::bytes(4))});
    const test::camera shared(records);
    test::container container(records);
    const auto init = [&] { return qz_isp_2_7_init(container.blob(), 4, 4, &shared.cmc, nullptr); };
    const long before = faults::live_blocks();

    faults::fail_allocation(faults::never);
    qz_isp_2_7_deinit(init());
    const long allocations = faults::allocations();
    ASSERT_GT(allocations, 80);
    int survived = 0;
    for (long n = 0; n < allocations; ++n) {
        for (const bool later_too : {false, true}) {
            faults::fail_allocation(n, later_too);
            isp_context *context = init();
            faults::fail_allocation(faults::never);
            survived += context != nullptr;
            qz_isp_2_7_deinit(context);
            ASSERT_EQ(faults::live_blocks(), before) << n;
        }
    }
    // The characterisation copy's three blocks and the second copy of each rec_13 may fail.
    EXPECT_EQ(survived, 3 + 40 + 1);

    isp_context twice = {};
    int parsed = 0;
    for (long n = 0; n < allocations; ++n) {
        faults::fail_allocation(n);
        const uint32_t status = isp_parse(container.blob(), &twice);
        parsed += status == ISP_SUCCESS;
        EXPECT_EQ(status, twice.set_count == 0 ? ISP_OUT_OF_MEMORY : ISP_SUCCESS) << n;
    }
    EXPECT_EQ(parsed, 40 + 1 + 3); // the last ones have nothing left to fail
    faults::fail_allocation(faults::never);
    isp_parse_deinit(&twice);
    EXPECT_EQ(faults::live_blocks(), before);
}

TEST(allocation_faults, of_a_parse_come_behind_all_that_is_wrong_and_its_sets_are_one_block)
{
    // Nested as deep as goes without the heap, and wrong only at the end.
    const test::bytes good = test::record(326, test::bytes(2));
    for (const test::bytes &bad : {test::record(339, {0}), test::bytes{7, 0, 0, 0, 0, 0, 0, 0, 0},
                                   test::set_container(2, {'V', 'U', 'X', 'B'})}) {
        test::bytes records = bad;
        for (uint16_t depth = 15; depth > 0; --depth)
            records = test::join({good, test::set_container(depth, records), good});
        test::container container(records);
        isp_context context = {};
        faults::fail_allocation(0);
        EXPECT_EQ(isp_parse(container.blob(), &context), ISP_INVALID_DATA);
        EXPECT_EQ(faults::allocations(), 0);
    }

    test::bytes records;
    for (uint16_t index = 1; index < 1024; ++index)
        records = test::join({records, test::set_container(index, {})});
    test::container ascending(test::join({good, records, good}));
    isp_context context = {};
    faults::fail_allocation(faults::never);
    EXPECT_EQ(isp_parse(ascending.blob(), &context), ISP_SUCCESS);
    EXPECT_EQ(faults::allocations(), 1 + 2);
    EXPECT_EQ(context.set_count, 1024);
    isp_parse_deinit(&context);
}

TEST(tuning_records, too_short_for_their_readers_read_as_zeros)
{
    for (const uint16_t base : std::initializer_list<uint16_t>{320, 768})
        for (uint16_t id = base; id < base + 19; ++id) {
            if (id == 320)
                continue; // refused
            test::camera nothing(test::join({test::record(id, {}, 101), test::record(1, {1})}));
            test::camera zeros(test::record(id, test::bytes(40), 101));
            isp_input_params input = {};
            input.nr_mode = input.edge_mode = 2;
            EXPECT_EQ(std::memcmp(&nothing.run(input), &zeros.run(input), AIC_FIXED_SIZE), 0) << id;
        }
}

} // namespace
