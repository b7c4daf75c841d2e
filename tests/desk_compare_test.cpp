// What differs between the records of two tunings: nothing that is planted goes unreported, nothing else is reported.
#include <cstddef>
#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "desk/compare/comparison.h"
#include "desk/explain/block_sources.h"
#include "desk/tuning/container.h"
#include "desk/tuning/to_json.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

byte_buffer sample_container()
{
    return pack_container("sample", qz::tool::sample_tuning);
}

comparison compare(const byte_buffer &old_container, const byte_buffer &new_container, const side_choice &choice = {},
                   std::string_view scene = qz::tool::sample_scene)
{
    side_choice unchanged = choice;
    unchanged.changes.clear();
    compared_side old_side("old", old_container, read_scene("scene", scene), unchanged);
    compared_side new_side("new", new_container, read_scene("scene", scene), choice);
    difference_tally tally;
    for (uint64_t run = old_side.first(); run < old_side.last(); ++run)
        tally.add(run, old_side.run(run), new_side.run(run));
    return describe(tally, old_side, new_side, true);
}

// The last field of a row, or of a record without rows.
struct planted_place {
    tuning_record record;
    size_t row;
    size_t offset; // in the container
    size_t size;
};

void find_places(const record_list &list, std::vector<planted_place> &places)
{
    for (const tuning_record &record : list) {
        find_places(record.nested, places);
        if (!record.place || record.place->kind == nullptr || record.place->kind->fields.empty())
            continue;
        const record_kind &kind = *record.place->kind;
        const field &last = kind.fields.back();
        for (size_t row = 0; row < static_cast<size_t>(kind.has_rows() ? stated_rows(record).value_or(0) : 1); ++row)
            places.push_back(
                {record, row, record.offset + kind.start + row * kind.size + last.offset, element_size(last.type)});
    }
}

// What reaches the records that no frame of the sample selects.
side_choice ranges_for(const record_kind &kind)
{
    side_choice choice = {.frame = "still", .settings = {"nr_mode=2", "edge_mode=1"}, .changes = {}, .over = {}};
    choice.over = {"tuning_mode=0..3", "frame.size.width=640,2000,3264"};
    if (kind.name == "macc")
        choice.over.insert(choice.over.end(),
                           {"effects=0,macc_1,macc_2,macc_3,macc_4,macc_5", "scene.macc_target=0..8000:500"});
    else
        choice.over.emplace_back("gain=1..64*2");
    return choice;
}

// Base sets by key serve a tuning_mode of 1 alone, which takes them from set 0.
bool is_out_of_reach(const planted_place &place)
{
    const tuning_record &record = place.record;
    const size_t entry = record.place->kind->start - record_header_size + place.row * record.place->kind->size;
    const size_t key_at = entry + offsetof(isp_macc_entry, key);
    return record.place->kind->name == "macc" && record.place->set != 0 && read_le<uint16_t>(record.body, key_at) != 0;
}

// No other block is told, and both origins lead to the record.
void expect_only(const tuning_record &record, const comparison &made)
{
    for (const differing_list &list : made.lists) {
        ASSERT_NE(list.list.block(), nullptr) << list.list.name();
        const block_source &source = block_sources()[block_number(*list.list.block())];
        EXPECT_EQ(slot_name(source.slot), record.place->kind->slot) << list.list.name();
        for (const differing_value &value : list.values) {
            const pair_origin *origin = made.origin_of(list, value.largest);
            ASSERT_TRUE(origin != nullptr && origin->old_side.block.record) << list.list.name();
            EXPECT_EQ(origin->old_side.block.record->offset, record.offset) << list.list.name();
            EXPECT_EQ(origin->new_side.block.record->offset, record.offset) << list.list.name();
        }
    }
}

TEST(compare, reports_what_is_planted_in_each_record)
{
    const byte_buffer container = sample_container();
    const tuning_container sample = read_container("sample", container);
    std::vector<planted_place> places;
    find_places(sample.list, places);
    std::set<std::string_view> kinds;
    for (const planted_place &place : places) {
        const record_kind &kind = *place.record.place->kind;
        SCOPED_TRACE(testing::Message() << kind.name << " at " << place.record.offset << ", row " << place.row);
        byte_buffer changed = container;
        changed[place.offset + place.size - 1] ^= 0x08;
        comparison made = compare(container, changed);
        if (made.is_same())
            made = compare(container, changed, ranges_for(kind));
        EXPECT_EQ(made.is_same(), is_out_of_reach(place));
        expect_only(place.record, made);
        kinds.insert(kind.name);
    }
    for (const record_kind &kind : record_kinds())
        EXPECT_EQ(kinds.contains(kind.name), !kind.fields.empty()) << kind.name;
}

TEST(compare, tells_containers_with_the_same_records_the_same)
{
    const byte_buffer container = sample_container();
    const std::string source = container_source(read_container("sample", container));
    EXPECT_TRUE(compare(container, pack_container("again", source)).is_same());
    // Records that nothing selects, and one that another replaces.
    std::string with_more(qz::tool::sample_tuning);
    with_more.insert(with_more.find("\"records\": [") + 12,
                     R"({"id": 9, "bytes": "0102"}, {"slot": "xnr", "family": 320, "set": 0, "rows": [[1, 2]]},)");
    const byte_buffer more = pack_container("more", with_more);
    EXPECT_NE(more, container);
    EXPECT_TRUE(compare(container, more).is_same());
}

run_result sample_result(bool gamma_257)
{
    const std::string scene = std::string(R"({"frames": [{"gamma": {}, "lsc": {"enable": 1, "width": 2, "height": 2,
        "grid": [[[1, 1], [1, 1]], [[1, 1], [1, 1]], [[1, 1], [1, 1]], [[1, 1], [1, 1]]]},
        "frame": {"size": {"width": 640, "height": 480}}, "gamma_257": )") +
                              (gamma_257 ? "1}]}" : "0}]}");
    compared_side side("side", sample_container(), read_scene("scene", scene), {});
    return side.run(0);
}

TEST(compare, finds_every_byte_of_a_record_and_a_makernote)
{
    std::vector<value_pair> found;
    for (const bool gamma_257 : {false, true}) {
        const run_result before = sample_result(gamma_257);
        ASSERT_GT(before.record.bytes_used, AIC_FIXED_SIZE);
        const size_t end = before.record.bytes_used + AIC_LENS_SHADING_TABLES_OFFSET - block_header_size;
        run_result after = before;
        auto *const bytes = reinterpret_cast<uint8_t *>(&after.record.record);
        size_t unnamed = 0;
        for (size_t i = 0; i < sizeof after.record.record; ++i) {
            bytes[i] ^= 0x80;
            find_differences(before, after, found);
            EXPECT_EQ(!found.empty(), i < end) << i;
            unnamed += found.size() == 1 && found[0].list.part == value_list::record_bytes;
            bytes[i] ^= 0x80;
        }
        // Ids, padding, and what no reader has a name for.
        EXPECT_LT(unnamed, 500u);
        EXPECT_GE(unnamed, 4 * record_blocks().size());
        for (uint8_t &byte : after.makernote) {
            if (&byte - after.makernote.data() < ptrdiff_t{sizeof(qz_mkn_saved_header) + sizeof(qz_mkn_saved_record)})
                continue; // what says how to read the rest
            byte ^= 0x01;
            try {
                find_differences(before, after, found);
                EXPECT_FALSE(found.empty()) << &byte - after.makernote.data();
            } catch (const error &) {
            }
            byte ^= 0x01;
        }
        find_differences(before, after, found);
        EXPECT_TRUE(found.empty());
    }
}

run_result with_values(int first, int second, bool has_shading)
{
    run_result result = {};
    result.record.bytes_used = AIC_FIXED_SIZE + (has_shading ? AIC_LENS_SHADING_TABLES_OFFSET : 0);
    result.record.bytes_held = sizeof result.record.record;
    result.record.record.edge_enhancement.payload.param[0] = first;
    result.record.record.edge_enhancement.payload.param[1] = second;
    qz_mkn_saved_header header = {QZ_MKN_SAVED_TAG, QZ_MKN_SAVED_VERSION, 0, 0, {}};
    result.makernote.resize(sizeof header);
    std::memcpy(result.makernote.data(), &header, sizeof header);
    return result;
}

TEST(compare, keeps_the_first_and_the_largest_in_any_order)
{
    const run_result old_run = with_values(10, 20, false);
    const run_result runs[] = {with_values(10, 20, false), with_values(13, 20, false), with_values(3, 21, true),
                               with_values(17, 20, false)};
    for (const std::vector<uint64_t> &order : {std::vector<uint64_t>{0, 1, 2, 3}, {3, 1, 0, 2}, {2, 3, 1, 0}}) {
        difference_tally tallies[2];
        for (const uint64_t run : order)
            tallies[run % 2].add(run, old_run, runs[run]);
        tallies[0].add(tallies[1]);
        EXPECT_EQ(tallies[0].differing_runs(), 3u);
        const std::vector<differing_list> lists = tallies[0].lists();
        ASSERT_GE(lists.size(), 3u);
        EXPECT_EQ(lists[0].list.name(), "edge_enhancement.param");
        EXPECT_EQ(lists[0].runs, 3u);
        ASSERT_EQ(lists[0].values.size(), 2u);
        const differing_value &param = lists[0].values[0];
        EXPECT_EQ(param.runs, 3u);
        EXPECT_EQ(param.first.run, 1u);
        EXPECT_EQ(param.first.new_value, 13);
        EXPECT_EQ(param.largest.run, 2u) << "the earlier of two that are 7 away";
        EXPECT_EQ(&lists[0].with_first(), &param);
        EXPECT_EQ(lists[0].values[1].first.run, 2u);
        // The block's size and fields are in one of them only.
        EXPECT_EQ(lists[1].list.name(), "lens_shading.size");
        EXPECT_EQ(lists[1].values[0].first.old_value, std::nullopt);
        EXPECT_EQ(lists[1].values[0].first.new_value, 0);
        EXPECT_EQ(lists.back().list.name(), "bytes_used");
    }
}

// Blocks that a frame leaves alone are as the frames before left them.
TEST(compare, runs_frames_in_their_order_and_rows_alone)
{
    const auto tuning = [](int extra) {
        return pack_container("tuning", R"({"records": [
            {"slot": "fringe_control", "family": 320, "set": 0, "version": 102, "rows": [[256, 1, 2, 3, 4, 5, 6, 7, 8]],
             "count2": 1, "extra": [[)" + std::to_string(extra) +
                                            R"(, 60, 70, 80]]},
            {"slot": "fringe_control", "family": 320, "set": 1, "rows": [[256, 1, 2, 3, 4, 5, 6, 7, 8]]}]})");
    };
    const byte_buffer old_tuning = tuning(400);
    const byte_buffer new_tuning = tuning(800);
    const std::string scene = R"({"frames": [{"edge_mode": 1, "tuning_mode": 0}, {"tuning_mode": 1},
                                             {"tuning_mode": 0, "name": "last"}]})";
    const comparison all = compare(old_tuning, new_tuning, {}, scene);
    ASSERT_EQ(all.lists.size(), 2u);
    EXPECT_EQ(all.lists[0].list.name(), "fringe_control.field_0_to_3");
    EXPECT_EQ(all.lists[1].list.name(), "makernote.fringe_control.value");
    EXPECT_EQ(all.lists[0].values[0].first.run, 1u);
    EXPECT_EQ(all.differing_runs, 2u);
    const comparison last =
        compare(old_tuning, new_tuning, {.frame = "last", .settings = {}, .changes = {}, .over = {}}, scene);
    EXPECT_EQ(last.runs, 1u);
    EXPECT_EQ(last.differing_runs, 1u) << "the frames before it are run too";
    EXPECT_EQ(last.places.at(2).name, "last");
    EXPECT_EQ(last.origin_of(last.lists[0], last.lists[0].values[0].first)->old_side.block.record->set, 1);
    side_choice alone = {.frame = std::nullopt, .settings = {}, .changes = {}, .over = {"gain=1,2"}};
    EXPECT_TRUE(compare(old_tuning, new_tuning, alone, scene).is_same());
    alone.over.emplace_back("tuning_mode=0,1");
    const comparison rows = compare(old_tuning, new_tuning, alone, scene);
    EXPECT_EQ(rows.runs, 4u);
    EXPECT_EQ(rows.differing_runs, 2u);
    EXPECT_EQ(rows.places.at(1).inputs,
              (std::vector<std::pair<std::string, std::string>>{{"gain", "1"}, {"tuning_mode", "1"}}));
}

TEST(compare, changes_the_new_side_only)
{
    const byte_buffer container = sample_container();
    const auto lists = [&](const std::vector<std::string> &settings, const std::vector<std::string> &changes,
                           const std::vector<std::string> &over = {}) {
        std::string names;
        const side_choice choice = {.frame = "still", .settings = settings, .changes = changes, .over = over};
        for (const differing_list &list : compare(container, container, choice).lists)
            names += list.list.is_makernote() ? "" : list.list.name() + " ";
        return names;
    };
    EXPECT_EQ(lists({"hue=5", "tuning:xnr[0/2].rows[0].param=7"}, {}), "");
    EXPECT_EQ(lists({"hue=5"}, {"hue=6"}), "macc.coeff ");
    EXPECT_EQ(lists({}, {"tuning:xnr[0/2].rows[0].param=7"}), "xnr.param ");
    EXPECT_EQ(lists({}, {"tuning:xnr[0/2].rows[0].param=7"}, {"gain=32,64"}), "") << "between other rows";
    EXPECT_EQ(lists({}, {"tuning:xnr[0/2].rows[0].param=7"}, {"tuning:xnr[0/2].rows[1].param=7,8"}), "xnr.param ");
    EXPECT_EQ(lists({}, {"lsc.enable=0"}).substr(0, 18), "lens_shading.size ");
    for (const char *const change : {"gain=3", "exposure.analog_gain=3", "exposure.digital_gain=3"})
        EXPECT_EQ(error_of([&] { lists({}, {change}, {"gain=1..4"}); }),
                  std::string("change ") + change + ": found a value that --over gain sets, expected another one");
}

} // namespace
