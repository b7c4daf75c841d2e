#include <fmt/format.h>

#include "desk/diff/differences.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"

namespace qz::tool {

using namespace desk;

namespace {

// Differing elements of one list that are printed without --all.
constexpr size_t short_list = 8;

std::string value_text(const std::optional<std::string> &value)
{
    return value.value_or("nothing");
}

void print_values(std::string &text, const part_difference &part, bool all)
{
    size_t in_field = 0;
    for (size_t i = 0; i < part.values.size(); ++i) {
        const difference &each = part.values[i];
        in_field = i > 0 && part.values[i - 1].field == each.field ? in_field + 1 : 0;
        if (all || in_field < short_list)
            text += fmt::format("  {:<28} {} -> {}\n", each.field + each.index, value_text(each.a), value_text(each.b));
        const bool last = i + 1 == part.values.size() || part.values[i + 1].field != each.field;
        if (!all && last && in_field >= short_list)
            text += fmt::format("  ... {} more of {}, --all shows them\n", in_field + 1 - short_list, each.field);
    }
}

std::string plural(size_t count, std::string_view noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

// parts: of A.
std::string differences_text(const std::vector<part_difference> &differences, size_t parts, bool all)
{
    std::string text;
    size_t count = 0;
    for (const part_difference &part : differences) {
        text += part.part + (part.title.empty() ? "" : fmt::format(" ({})", part.title));
        text += part.only_in.empty() ? "\n" : fmt::format(": only in {}\n", part.only_in);
        if (part.only_in.empty())
            print_values(text, part, all);
        count += part.values.size();
        parts += part.only_in == "B";
    }
    if (differences.empty())
        return fmt::format("no difference in {}\n", plural(parts, "part"));
    return text +
           fmt::format("{} in {} of {}\n", plural(count, "difference"), differences.size(), plural(parts, "part"));
}

void expect_two_files(const diff_options &options)
{
    if (!options.b && options.settings.empty())
        throw usage_error("diff: found one file, expected two, or --set for what differs in it");
    if (options.a == "-" && options.b == "-")
        throw usage_error("found standard input for both files, expected it for one");
}

} // namespace

int diff(const diff_options &options)
{
    expect_two_files(options);
    const byte_buffer bytes = read_file(options.a);
    const compared_file a = read_compared(input_name(options.a), bytes);
    const compared_file b = read_compared(input_name(options.b.value_or(options.a)),
                                          options.b ? read_file(*options.b) : bytes, options.settings);
    const std::vector<part_difference> differences = compare_files(a, b);
    write_text("-", options.as_json ? differences_json(differences)
                                    : differences_text(differences, a.parts.size(), options.all));
    return differences.empty() ? exit_success : exit_failure;
}

} // namespace qz::tool
