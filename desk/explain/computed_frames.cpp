#include "desk/explain/computed_frames.h"

#include "desk/explain/explain.h"

namespace qz::desk {

std::vector<computed_frame> compute_frames(isp_session &session, const scene &scene, const frame_choice &chosen,
                                           bool explained)
{
    std::optional<explainer> explaining;
    if (explained)
        explaining.emplace(session);
    std::vector<computed_frame> frames;
    for (size_t i = 0; i < chosen.last; ++i) {
        const frame_inputs &inputs = scene.frames[i];
        const record_snapshot snapshot = session.run(inputs);
        if (i < chosen.first)
            continue;
        frames.push_back({i, inputs.name, snapshot, std::nullopt});
        if (explaining)
            frames.back().origin = explaining->explain(inputs, snapshot);
    }
    return frames;
}

} // namespace qz::desk
