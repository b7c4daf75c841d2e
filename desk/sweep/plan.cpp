#include "desk/sweep/plan.h"

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/run/settings.h"

namespace qz::desk {

namespace {

frame_choice chosen_frames(const sweep_choice &choice, scene &setup, byte_buffer &container)
{
    const frame_choice chosen = choose_frames(setup, choice.frame);
    apply_settings(choice.settings, setup, chosen, container);
    return chosen;
}

std::vector<sweep_ranges> frame_ranges(const sweep_choice &choice, scene &setup, const frame_choice &frames,
                                       byte_buffer &container)
{
    std::vector<sweep_ranges> ranges;
    for (size_t frame = frames.first; frame < frames.last; ++frame)
        ranges.emplace_back(choice.over, setup.frames[frame], container);
    return ranges;
}

uint64_t all_rows(const std::vector<sweep_ranges> &ranges)
{
    if (ranges.front().rows() > UINT64_MAX / ranges.size())
        fail({std::nullopt, "frame", fmt::format("more than 2^64 rows of {} frames", ranges.size()), "fewer"});
    return ranges.front().rows() * ranges.size();
}

} // namespace

sweep_plan::sweep_plan(const sweep_choice &choice, scene setup, byte_buffer container, const std::string &tuning_name)
    : setup_(std::move(setup)), container_(std::move(container)), frames_(chosen_frames(choice, setup_, container_)),
      tells_frames_(choice.frame == all_frames), ranges_(frame_ranges(choice, setup_, frames_, container_)),
      columns_(choose_columns(choice.fields)), needs_(needs_of(columns_)),
      rows_(shard_rows(choice.shard, all_rows(ranges_))), makernote_(needs_.makernote ? make_makernote() : nullptr),
      session_(container_, tuning_name, setup_, makernote_.get()), source_()
{}

void sweep_plan::start_over()
{
    if (ranges_.front().vary_tuning())
        session_.load(container_);
    else
        session_.forget_frames();
    // A new context has its records elsewhere.
    if (!needs_.origins.empty() && (!explainer_ || ranges_.front().vary_tuning() || needs_.makernote))
        explainer_.emplace(session_);
}

const column_source &sweep_plan::compute(uint64_t row)
{
    ranges_[range_set(row)].apply(row % ranges_.front().rows());
    start_over();
    const frame_inputs &inputs = setup_.frames[frame_of(row)];
    session_.run(inputs, needs_.parts, source_.record);
    if (explainer_)
        source_.take_uses(explainer_->explain(inputs, source_.record, needs_.origins));
    if (makernote_)
        source_.makernote.read(makernote_.get(), 0);
    return source_;
}

} // namespace qz::desk
