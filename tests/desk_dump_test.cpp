// Dumps of records, and saved makernotes.
#include <gtest/gtest.h>

#include "desk/makernote/file.h"
#include "desk/record/dump.h"
#include "desk_suite.h"

using namespace qz::desk;

namespace {

byte_buffer dump_of(const std::vector<record_snapshot> &records)
{
    byte_buffer dump;
    for (const record_snapshot &each : records)
        append_record(dump, each);
    return dump;
}

TEST(record_dump, reads_back_as_what_was_run)
{
    const std::vector<record_snapshot> ran = sample_records();
    const std::vector<record_snapshot> read = read_records("dump", dump_of(ran));
    ASSERT_EQ(read.size(), ran.size());
    for (size_t i = 0; i < ran.size(); ++i) {
        for (const block_layout &block : record_blocks())
            for (const field &described : block.fields)
                EXPECT_EQ(field_values(read[i], block, described), field_values(ran[i], block, described))
                    << i << block.name << described.name;
        // The bytes in use end 40 bytes, 20 entries, before the last table does.
        for (size_t channel = 0; channel < shading_channels; ++channel) {
            const shading_table whole = shading_channel(ran[i], channel);
            const shading_table held = shading_channel(read[i], channel);
            ASSERT_EQ(held.entries.size(), whole.entries.size() - (channel == 3 ? 20 : 0));
            EXPECT_TRUE(std::ranges::equal(held.entries, whole.entries.first(held.entries.size())));
            EXPECT_EQ(held.at(whole.rows - 1, whole.columns - 1).has_value(), channel != 3);
            EXPECT_EQ(held.at(0, 1), whole.entries[1]);
        }
    }
}

TEST(record_dump, is_told_apart_by_what_follows_the_first_record)
{
    byte_buffer fixed = dump_of({sample_records()[0]});
    byte_buffer overflowing = fixed;
    overflowing[offsetof(aic_record, lens_shading.payload.columns) + 3] = 0x20; // 8 x 2^29 entries are 2^32 bytes
    EXPECT_EQ(error_of([&] { read_records("overflowing", overflowing); }),
              "overflowing: offset 4948: found 536870923 columns and 9 rows, expected 99 entries, as the size of the "
              "block tells");

    // 401 records of the fixed blocks are as long as 56 whole records.
    fixed.resize(AIC_FIXED_SIZE);
    byte_buffer many;
    for (int i = 0; i < 401; ++i)
        many.insert(many.end(), fixed.begin(), fixed.end());
    ASSERT_EQ(many.size() % AIC_RECORD_SIZE, 0u);
    EXPECT_EQ(read_records("many", many).size(), 401u);
    fixed.resize(AIC_RECORD_SIZE);
    fixed.insert(fixed.end(), fixed.begin(), fixed.end());
    EXPECT_EQ(read_records("two whole ones", fixed).size(), 2u);
}

TEST(record_dump, and_makernote_cut_anywhere_are_refused_with_an_offset)
{
    qz_mkn *created = qz_mkn_create();
    const byte_buffer records = dump_of(sample_records(created));
    const byte_buffer makernote = save_makernote(created);
    qz_mkn_destroy(created);
    size_t whole_frames = 0;
    for (size_t size = 0; size <= size_t{2} * 5728; size += 8) {
        const std::string problem = error_of([&] { read_records("cut", byte_view(records).first(size)); });
        whole_frames += problem == "no error" ? 1 : 0;
        EXPECT_TRUE(problem == "no error" || contains(problem, "cut: offset ")) << problem;
    }
    EXPECT_EQ(whole_frames, 4u); // two frames, each before and after its lens shading block
    for (size_t size = 0; size < makernote.size(); size += size < 500 ? 1 : 97)
        EXPECT_TRUE(
            contains(error_of([&] { read_makernote("cut", byte_view(makernote).first(size)); }), "cut: offset "));

    const std::pair<size_t, const char *> damages[] = {
        {0, "offset 0: found the bytes d14d4b4e, expected the tag \"QMKN\" (514d4b4e) of a saved makernote"},
        {4, "offset 4: found version 129, expected version 1"},
        {8, "expected the "},
        {24, "offset 24: found format 137, expected 1 to 6 or 9"},
    };
    for (const auto &[at, expected] : damages) {
        byte_buffer damaged = makernote;
        damaged[at] ^= 0x80;
        const std::string problem = error_of([&, &place = at] { read_makernote("m", damaged); });
        EXPECT_TRUE(contains(problem, expected)) << problem;
    }
    byte_buffer longer = makernote;
    longer.push_back(0);
    EXPECT_TRUE(
        contains(error_of([&] { read_makernote("m", longer); }), ": found 1 more bytes, expected the end, after "));
}

TEST(makernote_file, holds_the_blocks_of_every_frame)
{
    qz_mkn *created = qz_mkn_create();
    const std::vector<record_snapshot> records = sample_records(created);
    const byte_buffer saved = save_makernote(created);
    qz_mkn_destroy(created);
    const saved_makernote read = read_makernote("m", saved);
    EXPECT_EQ(read.dropped, 0u);
    EXPECT_TRUE(read.records[0].is_text());
    EXPECT_EQ(read.records[0].text(), "QZ_ISP 2.6.1 v2.0_012.000_002");
    EXPECT_EQ(read.records[0].key.size(), 16u);
    EXPECT_EQ(makernote_record_name(512), "white_balance");
    EXPECT_EQ(makernote_record_name(1), "");
    EXPECT_EQ(makernote_format_name(QZ_MKN_I16), "i16");
    size_t frame = 0;
    for (const makernote_record &record : read.records) {
        if (record.name != 514)
            continue;
        const auto &level = records.at(frame++).record.black_level.payload.level;
        std::vector<int64_t> expected(std::begin(level), std::end(level));
        expected.push_back(frame == 1 ? 0 : 18); // the next block's id, as the frame before left it
        EXPECT_EQ(record.values(), expected);
    }
    EXPECT_EQ(frame, records.size());
}

} // namespace
