#include "desk/base/one_of.h"

#include <algorithm>
#include <numeric>
#include <utility>
#include <vector>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace qz::desk {

namespace {

// Letters to add, to leave out or to change, neighbours swapped counting as one.
size_t letters_between(std::string_view a, std::string_view b)
{
    std::vector<size_t> two_back(b.size() + 1), last(b.size() + 1), row(b.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < a.size(); ++i) {
        two_back = std::exchange(last, row);
        row[0] = i + 1;
        for (size_t j = 0; j < b.size(); ++j) {
            row[j + 1] = std::min({last[j + 1] + 1, row[j] + 1, last[j] + (a[i] == b[j] ? 0 : 1)});
            if (i > 0 && j > 0 && a[i] == b[j - 1] && a[i - 1] == b[j])
                row[j + 1] = std::min(row[j + 1], two_back[j - 1] + 1);
        }
    }
    return row[b.size()];
}

} // namespace

std::string did_you_mean(std::string_view found, std::span<const std::string_view> names)
{
    std::string_view nearest;
    size_t least = 1 + std::clamp<size_t>(found.size() / 3, 1, 4);
    for (const std::string_view name : names) {
        const size_t longer = std::max(found.size(), name.size());
        if (longer - std::min(found.size(), name.size()) >= least)
            continue;
        if (const size_t letters = letters_between(found, name); letters < std::min(least, longer)) {
            least = letters;
            nearest = name;
        }
    }
    return nearest.empty() ? "" : fmt::format("; did you mean {}?", nearest);
}

std::string one_of(std::span<const std::string_view> names, std::string_view found)
{
    return fmt::format("one of {}{}", fmt::join(names, ", "), did_you_mean(found, names));
}

} // namespace qz::desk
