#include <array>

#include <gtest/gtest.h>

#include "allocation_faults.h"
#include "container_builder.h"
#include "qz_isp/context.h"

namespace {

struct inputs {
    isp_sensor_description sensor = {{}, 3264, 2448, 10, 0};
    isp_entry_table_header header = {{}, 2};
    std::array<uint8_t, 32> table = {};
    isp_cmc cmc = {nullptr, nullptr, &sensor, &header, table.data()};
    test::container container;

    explicit inputs(const test::bytes &records) : container(records, 0) {}

    isp_context *init() { return qz_isp_2_7_init(container.blob(), 4, 4, &cmc, nullptr); }
};

TEST(allocation_faults, one_block_for_the_context_one_for_the_sets_and_one_a_record)
{
    inputs in(test::join({test::record(323, test::bytes(6)), test::record(333, test::bytes(4)),
                          test::record(1, test::bytes(4)), test::record(324, {}), test::record(778, test::bytes(2)),
                          test::set_container(2, test::record(336, test::bytes(4)))}));
    const long before = faults::live_blocks();
    faults::fail_allocation(faults::never);
    isp_context *context = in.init();
    // Context, three parts of the characterisation, the sets, grown sets, five records, rec_13's second copy.
    EXPECT_EQ(faults::allocations(), 1 + 3 + 2 + 5 + 1);
    EXPECT_EQ(faults::live_blocks() - before, 1 + 3 + 1 + 4);
    qz_isp_2_7_deinit(context);
    EXPECT_EQ(faults::live_blocks(), before);
}

TEST(allocation_faults, any_failure_leaves_nothing_behind)
{
    // Nested beyond what the walk keeps without the heap.
    test::bytes records = test::record(326, test::bytes(2));
    for (uint16_t depth = 40; depth > 0; --depth)
        records = test::join({test::set_container(depth, records, depth % 2 == 0), test::record(333, test::bytes(4))});
    inputs in(records);

    const long before = faults::live_blocks();
    faults::fail_allocation(faults::never);
    qz_isp_2_7_deinit(in.init());
    const long allocations = faults::allocations();
    ASSERT_GT(allocations, 80);
    int survived = 0;
    for (long n = 0; n < allocations; ++n) {
        for (const auto fail : {faults::fail_allocation, faults::fail_from}) {
            fail(n);
            isp_context *context = in.init();
            faults::fail_allocation(faults::never);
            survived += context != nullptr;
            qz_isp_2_7_deinit(context);
            ASSERT_EQ(faults::live_blocks(), before) << n;
        }
    }
    // The characterisation copy's three blocks and the second copy of each rec_13 may fail.
    EXPECT_EQ(survived, 3 + 40 + 1);
}

} // namespace
