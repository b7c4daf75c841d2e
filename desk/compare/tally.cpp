#include "desk/compare/tally.h"

#include <algorithm>

namespace qz::desk {

std::optional<uint64_t> occurrence::distance() const
{
    if (!old_value || !new_value)
        return std::nullopt;
    const auto from = static_cast<uint64_t>(*old_value);
    const auto to = static_cast<uint64_t>(*new_value);
    return *old_value < *new_value ? to - from : from - to;
}

bool occurrence::is_larger_than(const occurrence &other) const
{
    const std::optional<uint64_t> mine = distance();
    const std::optional<uint64_t> theirs = other.distance();
    return mine == theirs ? run < other.run : mine > theirs;
}

const differing_value &differing_list::with_first() const
{
    return *std::ranges::min_element(values, {}, [](const differing_value &value) { return value.first.run; });
}

const differing_value &differing_list::with_largest() const
{
    return *std::ranges::min_element(
        values, [](const occurrence &one, const occurrence &other) { return one.is_larger_than(other); },
        &differing_value::largest);
}

void difference_tally::list_tally::add(const differing_value &value)
{
    const auto [place, is_new] = values.try_emplace(value.index, value);
    if (is_new)
        return;
    differing_value &known = place->second;
    known.runs += value.runs;
    if (value.first.run < known.first.run)
        known.first = value.first;
    if (value.largest.is_larger_than(known.largest))
        known.largest = value.largest;
}

void difference_tally::add(uint64_t run, const run_result &old_run, const run_result &new_run)
{
    find_differences(old_run, new_run, found_);
    differing_runs_ += !found_.empty();
    for (auto pair = found_.begin(); pair != found_.end();) {
        list_tally &list = lists_[pair->list];
        ++list.runs;
        for (const value_list same = pair->list; pair != found_.end() && pair->list == same; ++pair) {
            const occurrence here = {run, pair->old_value, pair->new_value};
            list.add({pair->index, 1, here, here});
        }
    }
}

void difference_tally::add(const difference_tally &other)
{
    differing_runs_ += other.differing_runs_;
    for (const auto &[name, theirs] : other.lists_) {
        list_tally &mine = lists_[name];
        mine.runs += theirs.runs;
        for (const auto &[index, value] : theirs.values)
            mine.add(value);
    }
}

std::vector<differing_list> difference_tally::lists() const
{
    std::vector<differing_list> all;
    for (const auto &[name, tally] : lists_) {
        differing_list &list = all.emplace_back(differing_list{name, tally.runs, {}});
        for (const auto &[index, value] : tally.values)
            list.values.push_back(value);
        std::ranges::sort(list.values, {}, &differing_value::index);
    }
    return all;
}

} // namespace qz::desk
