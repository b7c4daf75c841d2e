// The tables of the documents against the lists that they tell of.
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "desk/check/codes.h"
#include "desk/record/layout.h"
#include "desk/scene/frame_fields.h"
#include "desk/sweep/columns.h"
#include "desk/tuning/layout.h"
#include "qz_isp/makernote_records.h"
#include "tests/camera.h"
#include "tests/program.h"
#include "tools/base/files.h"

namespace {

using namespace qz::desk;

std::string document(const std::string &name)
{
    const byte_buffer bytes = qz::tool::read_file(QZ_SOURCE_TREE "/docs/" + name);
    return {bytes.begin(), bytes.end()};
}

std::vector<std::smatch> matches(const std::string &text, const std::string &pattern)
{
    const std::regex expression(pattern);
    return {std::sregex_iterator(text.begin(), text.end(), expression), std::sregex_iterator()};
}

template <typename Visitor>
void for_each_field(Visitor visit)
{
    for (const block_layout &block : record_blocks())
        for (const field &described : block.fields)
            visit(block, described, block.name == "gamma_1" || block.name == "gamma_2"); // told as gamma_0
}

TEST(documents, record_tells_every_block)
{
    const std::string text = document("record.md");
    EXPECT_NE(text.find(std::to_string(AIC_RECORD_SIZE) + " bytes"), std::string::npos);
    for (const block_layout &block : record_blocks()) {
        const std::string size = has_shading_tables(block) ? "8 + 8 × columns × rows" : std::to_string(block.size);
        const std::string row = fmt::format("| {} | {} | {} | `{}` |", block.offset, block.id, size, block.name);
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
    EXPECT_EQ(matches(text, "\n\\| \\d+ \\| \\d+ \\| [^`|]+ \\| `").size(), record_blocks().size());
}

TEST(documents, check_tells_every_code_and_its_severity)
{
    const std::string text = document("check.md");
    for (const finding_code &each : finding_codes) {
        const std::string row =
            fmt::format("| `{}` | {} |", each.code, severity_names[static_cast<size_t>(each.level)]);
        EXPECT_NE(text.find(row), std::string::npos) << row;
    }
    EXPECT_EQ(matches(text, "\n\\| `[a-z0-9-]+` \\|").size(), std::size(finding_codes));
}

// Rows of a byte in the block, a field or elements of one, and a type; the block's number stands in front of them, or
// in a line before.
TEST(documents, record_tells_every_field_at_its_place)
{
    std::istringstream text(document("record.md"));
    const std::regex heading("^(?:#+ )?\\**Blocks? (\\d+)");
    const std::regex row("^\\| (?:(\\d+) \\| )?(\\d+) \\| `(\\w+)((?:\\[\\d+\\])*)`([^|]*)\\| (?:[ui](8|16|32) \\|)?");
    std::set<std::pair<std::string, std::string>> told;
    std::string id;
    for (std::string line; std::getline(text, line);) {
        std::smatch found;
        if (std::regex_search(line, found, heading))
            id = found[1];
        if (!std::regex_search(line, found, row) || found[3] == "padding" || found[3] == "entries")
            continue;
        const std::string block_id = found[1].matched ? found[1].str() : id;
        const std::string brackets = found[4];
        size_t count = 1;
        for (const std::smatch &bracket : matches(brackets, "\\d+"))
            count *= std::stoul(bracket[0]);
        for_each_field([&](const block_layout &block, const field &described, bool) {
            if (block_id != std::to_string(block.id) || described.name != found[3].str())
                return;
            const bool whole = brackets.empty() || (found[5] == " " && count == described.count);
            const size_t size = element_size(described.type);
            EXPECT_EQ(std::to_string(described.offset - block.offset + (whole ? 0 : count * size)), found[2]) << line;
            EXPECT_TRUE(!found[6].matched || std::to_string(8 * size) == found[6]) << line;
            told.insert({block_id, found[3]});
        });
        EXPECT_TRUE(told.contains({block_id, found[3]})) << line;
    }
    for_each_field([&](const block_layout &block, const field &described, bool as_before) {
        EXPECT_TRUE(as_before || told.contains({std::to_string(block.id), std::string(described.name)}))
            << block.id << ' ' << described.name;
    });
}

TEST(documents, record_lists_the_default_values)
{
    test::camera camera;
    const record_snapshot snapshot = take_snapshot(camera.run({}), AIC_FIXED_SIZE);
    const std::string text = document("record.md");
    size_t lists = 0;
    for (const std::smatch &section : matches(text, "### Block (\\d+)\n\n((?:`[^#]*)+)")) {
        for_each_field([&](const block_layout &block, const field &described, bool) {
            const std::string body = section[2];
            const auto found = matches(body, fmt::format("`{}\\[\\d+\\]`:\n\n((?: +.*\n)+)", described.name));
            if (std::to_string(block.id) != section[1] || found.empty())
                return;
            const std::string list = found[0][1];
            std::vector<int64_t> values;
            for (const std::smatch &number : matches(list, "-?\\d+"))
                values.push_back(std::stoll(number[0]));
            EXPECT_EQ(values, field_values(snapshot, block, described)) << section[1];
            ++lists;
        });
    }
    EXPECT_EQ(lists, 7u);
}

TEST(documents, makernote_tells_every_record_in_order)
{
    const std::string text = document("makernote.md");
    size_t reached = 0;
    size_t rows = 0;
#define QZ_EXPECT_ROW(name, number, format, count, content)                                                            \
    {                                                                                                                  \
        const std::string row = "\n| " #number " | " + std::to_string(QZ_MKN_##format) + " | " +                       \
                                ((count) != 0 ? std::to_string(count) + " |" : "");                                    \
        reached = text.find(row, reached);                                                                             \
        ASSERT_NE(reached, std::string::npos) << row;                                                                  \
        ++rows;                                                                                                        \
    }
    ISP_MAKERNOTE_RECORDS(QZ_EXPECT_ROW)
    EXPECT_EQ(matches(text, "\n\\| \\d{3,} \\|").size(), rows);
}

TEST(documents, tuning_container_tells_every_kind_of_record)
{
    const std::string text = document("tuning-container.md");
    constexpr const char *elements[] = {"u8", "i8", "u16", "i16", "u32", "i32", "f32"};
    for (const record_kind &kind : record_kinds()) {
        std::string row = "| `" + std::string(kind.name) + "` |";
        for (const uint8_t offset : {kind.in_320, kind.in_768, kind.in_1536})
            row += offset != 0 ? " " + std::to_string(offset) + " |" : " |";
        row += " " + std::to_string(kind.start) + " |" + (kind.fields.empty() ? "" : " " + std::to_string(kind.size)) +
               " |";
        for (const field &part : kind.fields)
            row += (part.offset != 0 ? ", " : " ") + (part.count > 1 ? std::to_string(part.count) + " " : "") +
                   elements[static_cast<size_t>(part.type)] + " `" + std::string(part.name) + "`";
        EXPECT_NE(text.find("\n" + row), std::string::npos) << row;
    }
    EXPECT_EQ(matches(text, "\n\\| `\\w+` \\|(?: \\d* ?\\|){3}").size(), record_kinds().size());
#define QZ_EXPECT_GROUP(family, first, set)                                                                            \
    if ((family) == (first)) {                                                                                         \
        const std::string ids = "| " #family " to " + std::to_string((family) + 3 * ISP_TUNING_GROUP_IDS - 1) + " |";  \
        EXPECT_NE(text.find(ids), std::string::npos) << ids;                                                           \
    }
    ISP_TUNING_GROUPS(QZ_EXPECT_GROUP)
    EXPECT_NE(text.find("| " + std::to_string(ISP_RULES_ID) + " | selection rules |"), std::string::npos);
}

// Names in objects, those of a block's fields left out.
void add_names(const nlohmann::json &value, std::set<std::string> &names)
{
    for (const auto &[name, member] : value.items()) {
        if (value.is_object())
            names.insert(name);
        if (member.is_structured() && name != "fields")
            add_names(member, names);
    }
}

using documents_of_output = program_test;

TEST_F(documents_of_output, json_tells_every_name)
{
    const std::string text = document("json.md");
    std::set<std::string> names;
    add_names(nlohmann::json::parse(run("run --json --explain --frame all").out), names);
    EXPECT_GT(names.size(), 40u);
    for (const std::string &name : names) {
        EXPECT_TRUE(text.find("`" + name + "`") != std::string::npos || name == "frames") << name;
    }
}

TEST(documents, scene_and_sweep_tell_the_names_of_inputs)
{
    const std::string scene = document("scene.md");
    std::set<std::string> names;
    for (const std::smatch &span : matches(scene, "`(\\w+)`"))
        names.insert(span[1]);
    for (const std::string_view effect : effect_names)
        EXPECT_TRUE(names.contains(std::string(effect))) << effect;
    std::set<std::string> inputs = {"lsc.enable"};
    for (const input_group &group : input_groups()) {
        for (const field &described : group.fields) {
            const std::string name(described.name);
            inputs.insert(std::string(group.path) + "." + name);
            EXPECT_TRUE(names.contains(name) || name.starts_with("padding")) << group.path << ' ' << name;
        }
    }
    const std::string sweep = document("sweep.md");
    for (const std::smatch &span : matches(sweep, "`((?:\\w+\\.)+(?:\\w+|\\*))(\\[\\d+\\])?`")) {
        EXPECT_NO_THROW(inputs.contains(span[1]) || !choose_columns(span[1]).empty()) << span[0];
    }
    for (const sweep_column &column : choose_columns({})) {
        EXPECT_TRUE(column.block != nullptr || sweep.find("| `" + column.name + "` |") != std::string::npos)
            << column.name;
    }
}

} // namespace
