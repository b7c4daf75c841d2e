#include "desk/sweep/plan.h"

#include <fmt/format.h>

#include "desk/base/error.h"
#include "desk/run/settings.h"
#include "desk/scene/frame_choice.h"

namespace qz::desk {

namespace {

frame_inputs &chosen_frame(scene &scene, const sweep_choice &choice, byte_buffer &container)
{
    const frame_choice chosen = choose_frames(scene, choice.frame);
    if (chosen.last - chosen.first != 1)
        fail({std::nullopt, "frame", fmt::format("{} frames", chosen.last - chosen.first), "one for a sweep"});
    apply_settings(choice.settings, scene, chosen, container);
    return scene.frames[chosen.first];
}

} // namespace

sweep_plan::sweep_plan(const sweep_choice &choice, scene &scene, byte_buffer &container)
    : inputs_(chosen_frame(scene, choice, container)), container_(container), ranges_(choice.over, inputs_, container),
      columns_(choose_columns(choice.fields)), rows_(shard_rows(choice.shard, ranges_.rows()))
{}

record_snapshot sweep_plan::compute(uint64_t row, isp_session &session) const
{
    ranges_.apply(row);
    if (ranges_.vary_tuning())
        session.load(container_);
    else
        session.forget_frames();
    return session.run(inputs_);
}

} // namespace qz::desk
