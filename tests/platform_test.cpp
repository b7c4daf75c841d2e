#include <array>
#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "qz_log.h"
#include "qz_mkn.h"

namespace {

TEST(makernote, keeps_records_in_order_with_their_own_copy_of_bytes_and_key)
{
    qz_mkn *mkn = qz_mkn_create();
    std::array<uint16_t, 3> values = {1, 2, 3};
    std::string key = "key";
    EXPECT_TRUE(qz_mkn_add_record(mkn, QZ_MKN_U16, 530, values.data(), 3, nullptr));
    EXPECT_TRUE(qz_mkn_add_record(mkn, QZ_MKN_TEXT, 538, "version", 7, key.c_str()));
    values.fill(0);
    key[0] = 'x';

    qz_mkn_record record = {};
    ASSERT_TRUE(qz_mkn_get_record(mkn, 0, &record));
    EXPECT_EQ(record.name, 530u);
    EXPECT_EQ(record.size, 6u);
    EXPECT_EQ(std::memcmp(record.data, std::array<uint16_t, 3>{1, 2, 3}.data(), 6), 0);
    EXPECT_EQ(record.key, nullptr);
    ASSERT_TRUE(qz_mkn_get_record(mkn, 1, &record));
    EXPECT_EQ(std::string(static_cast<const char *>(record.data), record.size), "version");
    EXPECT_STREQ(record.key, "key");
    EXPECT_TRUE(qz_mkn_add_record(mkn, QZ_MKN_U32, 540, nullptr, 0, nullptr));
    ASSERT_TRUE(qz_mkn_get_record(mkn, 2, &record));
    EXPECT_EQ(record.size, 0u);
    EXPECT_FALSE(qz_mkn_get_record(mkn, 3, &record));

    const uint32_t saved[] = {0x4e4b4d51, 1,   3,   0, 0,          0,          // header
                              4,          530, 3,   0, 0x00020001, 0x00000003, // three of 16 bits
                              9,          538, 7,   3, 0x73726576, 0x6b6e6f69,
                              0x00007965, 6,   540, 0, 0}; // "version", "key"
    std::vector<uint32_t> bytes(qz_mkn_saved_size(mkn) / 4, 7);
    qz_mkn_save(mkn, bytes.data());
    EXPECT_EQ(bytes, std::vector<uint32_t>(std::begin(saved), std::end(saved)));
    qz_mkn_destroy(mkn);
    qz_mkn_destroy(nullptr);
}

TEST(log, writes_one_line_and_cuts_a_long_one)
{
    testing::internal::CaptureStderr();
    qz_log(3, "%s", "");
    qz_log(0, "%2000d", 7);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "qz[3] \nqz[0] " + std::string(1016, ' ') + "\n");
}

TEST(makernote, drops_and_counts_what_it_cannot_keep)
{
    qz_mkn *mkn = qz_mkn_create();
    const uint32_t word = 0;
    EXPECT_FALSE(qz_mkn_add_record(mkn, 7, 1, &word, 1, nullptr));
    EXPECT_FALSE(qz_mkn_add_record(mkn, QZ_MKN_U32, 1, &word, 0x40000001u, nullptr));
    EXPECT_FALSE(qz_mkn_add_record(mkn, QZ_MKN_U32, 1, nullptr, 1, nullptr));
    EXPECT_EQ(qz_mkn_record_count(mkn), 0u);
    EXPECT_EQ(qz_mkn_dropped_count(mkn), 3u);
    EXPECT_FALSE(qz_mkn_add_record(nullptr, QZ_MKN_U32, 1, &word, 1, nullptr));
    qz_mkn_destroy(mkn);
}

TEST(makernote, cleared_is_as_new)
{
    qz_mkn *mkn = qz_mkn_create();
    const size_t empty = qz_mkn_saved_size(mkn);
    for (uint32_t round = 0; round < 3; ++round) {
        for (uint32_t i = 0; i < 100; ++i)
            EXPECT_TRUE(qz_mkn_add_record(mkn, QZ_MKN_U32, i + round, &i, 1, "key"));
        EXPECT_FALSE(qz_mkn_add_record(mkn, 7, 1, nullptr, 0, nullptr));
        qz_mkn_record record = {};
        ASSERT_TRUE(qz_mkn_get_record(mkn, 99, &record));
        EXPECT_EQ(record.name, 99 + round);
        qz_mkn_clear(mkn);
        EXPECT_EQ(qz_mkn_record_count(mkn), 0u);
        EXPECT_EQ(qz_mkn_dropped_count(mkn), 0u);
        EXPECT_EQ(qz_mkn_saved_size(mkn), empty);
    }
    qz_mkn_destroy(mkn);
}

TEST(makernote, container_needs_the_tag_and_a_whole_header)
{
    char bytes[QZ_MKN_HEADER_SIZE] = {'V', 'U', 'X', 'B'};
    uint32_t tag = 0;
    std::memcpy(&tag, "VUXB", 4);
    isp_blob blob = {bytes, QZ_MKN_HEADER_SIZE};
    EXPECT_TRUE(qz_mkn_is_valid(&blob, tag));
    blob.size = QZ_MKN_HEADER_SIZE - 1;
    EXPECT_FALSE(qz_mkn_is_valid(&blob, tag));
    blob.size = QZ_MKN_HEADER_SIZE;
    bytes[3] = 'C';
    EXPECT_FALSE(qz_mkn_is_valid(&blob, tag));
    EXPECT_FALSE(qz_mkn_is_valid(nullptr, tag));
    blob.data = nullptr;
    EXPECT_FALSE(qz_mkn_is_valid(&blob, tag));
}

} // namespace
