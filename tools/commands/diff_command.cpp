#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/diff/differences.h"
#include "tools/base/exit_codes.h"
#include "tools/base/files.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"

namespace qz::tool {

using namespace desk;

namespace {

constexpr int exit_different = 1;
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

std::string differences_text(const std::vector<part_difference> &differences, size_t part_count, bool all)
{
    std::string text;
    size_t count = 0;
    for (const part_difference &part : differences) {
        text += part.part + (part.only_in.empty() ? "\n" : fmt::format(": only in {}\n", part.only_in));
        if (part.only_in.empty())
            print_values(text, part, all);
        count += part.values.size();
    }
    if (differences.empty())
        return fmt::format("no difference in {}\n", plural(part_count, "part"));
    return text +
           fmt::format("{} in {} of {}\n", plural(count, "difference"), differences.size(), plural(part_count, "part"));
}

compared_file read(const std::string &file)
{
    return read_compared(input_name(file), read_file(file));
}

int compare(const diff_options &options)
{
    if (options.a == "-" && options.b == "-")
        throw usage_error("found standard input for both files, expected it for one");
    const compared_file a = read(options.a);
    const compared_file b = read(options.b);
    const std::vector<part_difference> differences = compare_files(a, b);
    write_text("-", options.as_json ? differences_json(differences)
                                    : differences_text(differences, a.parts.size(), options.all));
    return differences.empty() ? exit_success : exit_different;
}

} // namespace

int diff(const diff_options &options)
{
    // 1 is an answer here, so that every error gives 2.
    try {
        return compare(options);
    } catch (const error &wrong) {
        throw usage_error(error_text(wrong));
    } catch (const std::exception &error) {
        throw usage_error(error.what());
    }
}

} // namespace qz::tool
