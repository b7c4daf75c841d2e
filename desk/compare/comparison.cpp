#include "desk/compare/comparison.h"

#include <set>

namespace qz::desk {

namespace {

using told_runs = std::map<uint64_t, std::set<const block_layout *>>;

void tell(const differing_list &list, const occurrence &where, told_runs &told)
{
    std::set<const block_layout *> &blocks = told[where.run];
    if (const block_layout *block = list.list.block())
        blocks.insert(block);
}

told_runs runs_to_tell(const std::vector<differing_list> &lists, bool every_value)
{
    told_runs told;
    for (const differing_list &list : lists) {
        tell(list, list.with_first().first, told);
        tell(list, list.with_largest().largest, told);
        for (size_t i = 0; every_value && i < list.values.size(); ++i) {
            tell(list, list.values[i].first, told);
            tell(list, list.values[i].largest, told);
        }
    }
    return told;
}

side_origin origin_in(const frame_origin &frame, const block_layout &block)
{
    return {frame.gain, frame.blocks[block_number(block)]};
}

} // namespace

const pair_origin *comparison::origin_of(const differing_list &list, const occurrence &where) const
{
    const auto found = origins.find({where.run, list.list.block()});
    return found != origins.end() ? &found->second : nullptr;
}

comparison describe(const difference_tally &tally, compared_side &old_side, compared_side &new_side, bool every_value)
{
    comparison made = {.old_name = old_side.name(),
                       .new_name = new_side.name(),
                       .same_tunings = old_side.container() == new_side.container(),
                       .runs = old_side.last() - old_side.first(),
                       .of_rows = old_side.has_rows(),
                       .differing_runs = tally.differing_runs(),
                       .lists = tally.lists(),
                       .places = {},
                       .origins = {}};
    for (const auto &[run, blocks] : runs_to_tell(made.lists, every_value)) {
        made.places.emplace(run, old_side.place(run));
        old_side.run(run);
        new_side.run(run);
        const frame_origin in_old = old_side.explain();
        const frame_origin in_new = new_side.explain();
        for (const block_layout *block : blocks)
            made.origins.emplace(std::pair(run, block),
                                 pair_origin{origin_in(in_old, *block), origin_in(in_new, *block)});
    }
    return made;
}

} // namespace qz::desk
