// Dumps of records, and saved makernotes.
#include <cstring>

#include <gtest/gtest.h>

#include "desk/makernote/file.h"
#include "desk/record/dump.h"
#include "tests/desk_suite.h"

using namespace qz::desk;

namespace {

byte_buffer dump_of(const std::vector<record_snapshot> &records)
{
    byte_buffer dump;
    for (const record_snapshot &each : records)
        append_record(dump, each);
    return dump;
}

TEST(record_dump, is_told_apart_by_what_follows_the_first_record)
{
    byte_buffer fixed = dump_of({sample_records()[0]});
    byte_buffer overflowing = fixed;
    overflowing[offsetof(aic_record, lens_shading.payload.columns) + 3] = 0x20; // 8 x 2^29 entries are 2^32 bytes
    EXPECT_EQ(error_of([&] { read_records("overflowing", overflowing); }),
              "overflowing: offset 4948: found 536870923 columns and 9 rows, expected 99 entries, as the size of the "
              "block tells");

    byte_buffer largest = dump_of({sample_records()[0]});
    largest.resize(AIC_RECORD_SIZE);
    for (const uint32_t entries : {AIC_LENS_SHADING_MAX_ENTRIES, AIC_LENS_SHADING_MAX_ENTRIES + 1}) {
        const uint32_t size = 8 + 8 * entries;
        const uint32_t grid[] = {entries, 1};
        std::memcpy(&largest[AIC_FIXED_SIZE + 4], &size, sizeof size);
        std::memcpy(&largest[offsetof(aic_record, lens_shading.payload.columns)], grid, sizeof grid);
        EXPECT_EQ(error_of([&] { read_records("largest", largest); }) == "no error",
                  entries == AIC_LENS_SHADING_MAX_ENTRIES);
    }

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
    const std::vector<uint8_t> many(70000, 7);
    qz_mkn_add_record(created, QZ_MKN_U8, 1, many.data(), 70000, nullptr);
    const byte_buffer makernote = save_makernote(created);
    qz_mkn_destroy(created);
    EXPECT_EQ(read_makernote("many", makernote).records.back().data.size(), many.size());
    size_t whole_frames = 0;
    for (size_t size = 0; size <= size_t{2} * 5728; size += 8) {
        const std::string problem = error_of([&] { read_records("cut", byte_view(records).first(size)); });
        whole_frames += problem == "no error" ? 1 : 0;
        EXPECT_TRUE(problem == "no error" || contains(problem, "cut: offset ")) << problem;
    }
    EXPECT_EQ(whole_frames, 4u); // two frames, each before and after its lens shading block
    for (size_t size = 0; size < makernote.size(); size += size < 500 ? 1 : 977)
        EXPECT_TRUE(
            contains(error_of([&] { read_makernote("cut", byte_view(makernote).first(size)); }), "cut: offset "));

    const std::pair<size_t, const char *> damages[] = {
        {0, "offset 0: found the bytes d14d4b4e, expected the tag \"QMKN\" (514d4b4e) of a saved makernote"},
        {4, "offset 4: found version 129, expected version 1"},
        {8, "expected the "},
        {24, "offset 24: found format 137, expected one of 1, 2, 3, 4, 5, 6, 9"},
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

} // namespace
