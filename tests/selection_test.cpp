#include <chrono>
#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "qz_isp/error.h"
#include "tests/container_builder.h"

namespace {

// An xnr record of set 0, 1 or 2 that carries a value to tell it by; edge enhancement likewise.
constexpr uint16_t base[] = {320, 448, 384};

test::bytes xnr(int set, uint16_t value)
{
    return test::shorts(static_cast<uint16_t>(base[set] + 15), {1, 256, value});
}

test::bytes edge(int set, uint16_t value)
{
    return test::shorts(static_cast<uint16_t>(base[set] + 8), {1, 256, value, 0, 0});
}

struct selector : test::parsed {
    using parsed::parsed;

    uint32_t select(uint32_t mode, const isp_geometry *frame = nullptr, const isp_geometry *aux = nullptr,
                    const uint32_t *list = nullptr)
    {
        std::memset(&selected, 0xff, sizeof selected);
        return tuningselector(mode, &context, &context.rules, frame, aux, context.set_count, list, &selected);
    }

    uint16_t xnr() const { return value(selected.xnr); }
    uint16_t edge() const { return value(selected.edge_enhancement); }

    isp_tuning_set selected = {};

  private:
    static uint16_t value(const isp_table_slot &slot)
    {
        return slot.record != nullptr ? static_cast<const uint16_t *>(slot.data)[1] : uint16_t{0};
    }
};

TEST(selection, mode_orders_the_three_sets_slot_by_slot)
{
    selector all(test::join({xnr(0, 10), xnr(1, 11), xnr(2, 12), edge(0, 20), edge(2, 22), test::record(321, {1})}));
    EXPECT_NE(all.set(0).rec_1.record, nullptr);
    const uint16_t expected[][3] = {{0, 11, 22}, {1, 10, 20}, {2, 10, 20}, {3, 12, 22}, {4, 10, 20}};
    for (const auto &[mode, xnr_value, edge_value] : expected) {
        EXPECT_EQ(all.select(mode), ISP_SUCCESS);
        EXPECT_EQ(all.xnr(), xnr_value) << mode;
        EXPECT_EQ(all.edge(), edge_value) << mode;
        EXPECT_EQ(all.selected.rec_1.record, nullptr);
        EXPECT_EQ(all.selected.noise_reduction.record, nullptr);
    }
}

TEST(selection, comparisons_of_both_geometries)
{
    const isp_geometry frame = {{9, 9}, 100, 50};     // area 5000
    const isp_geometry wide = {{9, 9}, 65535, 65535}; // wraps to a negative area
    const double nan = std::numeric_limits<double>::quiet_NaN();
    struct expectation {
        test::rule rule;
        const isp_geometry *frame;
        const isp_geometry *aux;
        bool matches;
    };
    for (const auto &[rule, frame_size, aux, matches] : {
             expectation{{1, 1, 1, 5000.0}, &frame, nullptr, true},
             {{1, 1, 1, 5000.5}, &frame, nullptr, false},
             {{1, 2, 1, 5000.0}, &frame, nullptr, false},
             {{1, 2, 1, 5001.0}, &frame, nullptr, true},
             {{1, 3, 1, 4999.0}, &frame, nullptr, true},
             {{1, 3, 1, 5000.0}, &frame, nullptr, false},
             {{1, 4, 1, 5000.0}, &frame, nullptr, true},
             {{1, 5, 1, 5000.0}, &frame, nullptr, true},
             {{1, 5, 1, 5001.0}, &frame, nullptr, false},
             {{1, 0, 1, 5000.0}, &frame, nullptr, false},
             {{1, 6, 1, 5000.0}, &frame, nullptr, false},
             {{1, 4, 1, nan}, &frame, nullptr, false},
             {{1, 5, 1, 0.0}, nullptr, &frame, false},
             {{2, 5, 1, 5000.0}, nullptr, &frame, true},
             {{2, 5, 1, 5000.0}, &frame, nullptr, false},
             {{3, 5, 1, 0.0}, &frame, &frame, false},
             {{0, 5, 1, 0.0}, &frame, &frame, false},
             {{1, 2, 1, 0.0}, &wide, nullptr, true},
             {{1, 5, 2, 0.0}, &frame, nullptr, false}, // no such set index
             {{1, 5, 0xffff, 0.0}, &frame, nullptr, false},
         }) {
        // Set 1 lies behind the last index of set 0.
        selector two(test::join({xnr(0, 10), xnr(1, 12), test::set_container(1, xnr(0, 11)), test::rules({rule})}));
        two.select(1, frame_size, aux);
        EXPECT_EQ(two.xnr(), matches ? 11 : 10) << rule.kind << ' ' << rule.op << ' ' << rule.threshold;
    }
}

TEST(selection, first_matching_rule_wins_and_later_ones_fill_up)
{
    const isp_geometry frame = {{}, 10, 10};
    const test::bytes records =
        test::join({xnr(0, 10), edge(0, 20), test::record(335 + 1, {}),
                    test::set_container(1, test::join({xnr(0, 11), edge(0, 21)})), test::set_container(2, xnr(0, 12)),
                    test::rules({{1, 1, 2, 100.0}, {1, 1, 1, 100.0}, {1, 1, 2, 100.0}})});
    selector three(records);
    three.select(1, &frame);
    EXPECT_EQ(three.xnr(), 12);
    EXPECT_EQ(three.edge(), 21);
    EXPECT_NE(three.selected.rec_16, nullptr);

    const uint32_t list[] = {0};
    three.select(1, &frame, nullptr, list);
    EXPECT_EQ(three.xnr(), 10);
}

TEST(selection, rules_cost_the_same_whether_they_match_or_not)
{
    const isp_geometry frame = {{}, 10, 10};
    const auto cost = [&](uint16_t op) {
        const std::vector<test::rule> rules(65536, {1, op, 1, 50.0});
        selector many(test::join({xnr(0, 10), test::set_container(1, edge(0, 21)), test::rules(rules)}));
        auto least = std::chrono::steady_clock::duration::max();
        for (int i = 0; i < 5; ++i) {
            const auto start = std::chrono::steady_clock::now();
            many.select(1, &frame);
            least = std::min(least, std::chrono::steady_clock::now() - start);
        }
        EXPECT_EQ(many.edge(), op == 3 ? 21 : 0);
        return least;
    };
    EXPECT_LT(cost(3), 4 * cost(2)); // it is 100 > 50, and not 100 < 50
}

TEST(selection, rules_need_bytes_of_their_own)
{
    const isp_geometry frame = {{}, 10, 10};
    selector two(test::join(
        {xnr(0, 10), test::set_container(1, xnr(0, 11)), test::record(709, {0, 0, 0, 0, 1, 0, 0, 0, 1, 0, 1, 0})}));
    two.select(1, &frame);
    EXPECT_EQ(two.xnr(), 10);
}

TEST(selection, null_arguments)
{
    isp_tuning_set set;
    std::memset(&set, 0xff, sizeof set);
    EXPECT_EQ(tuningselector(1, nullptr, nullptr, nullptr, nullptr, 0, nullptr, &set), ISP_INVALID_ARGUMENT);
    EXPECT_EQ(set.xnr.record, nullptr);
    isp_context context = {};
    EXPECT_EQ(tuningselector(1, &context, nullptr, nullptr, nullptr, 0, nullptr, nullptr), ISP_INVALID_ARGUMENT);
    EXPECT_EQ(tuningselector(1, &context, nullptr, nullptr, nullptr, 0, nullptr, &set), ISP_SUCCESS);
    const isp_geometry frame = {{}, 10, 10};
    const test::parsed two(
        test::join({xnr(0, 10), test::set_container(1, xnr(0, 11)), test::rules({{1, 1, 1, 100.0}})}));
    const isp_rule_ref nowhere = {two.context.rules.record, nullptr};
    for (const isp_rule_ref *rules : std::initializer_list<const isp_rule_ref *>{nullptr, &context.rules, &nowhere}) {
        EXPECT_EQ(tuningselector(1, &two.context, rules, &frame, nullptr, 2, nullptr, &set), ISP_SUCCESS);
        EXPECT_EQ(set.xnr.record, two.set(0).xnr.record);
    }
}

} // namespace
