#include "desk/report/data.h"

#include <nlohmann/json.hpp>

#include "desk/explain/frame_json.h"
#include "desk/json/fields.h"
#include "desk/report/gain_curves.h"
#include "desk/scene/frame_fields.h"

namespace qz::desk {

namespace {

json gamma_tables(const record_snapshot &snapshot)
{
    json tables = json::array();
    for (const block_layout &block : record_blocks()) {
        for (const field &described : block.fields) {
            if (described.count == AIC_GAMMA_MAX_ENTRIES)
                tables.push_back(field_values(snapshot, block, described));
        }
    }
    return tables;
}

scene without_tone(scene scene)
{
    for (frame_inputs &frame : scene.frames) {
        frame.controls.brightness = 0;
        frame.controls.contrast = 0;
    }
    return scene;
}

json effects_json(uint32_t effects)
{
    json names = json::array();
    for (const auto &[bit, name] : named_effects) {
        if ((effects & bit) != 0)
            names.push_back(name);
    }
    return names;
}

json inputs_json(frame_inputs frame)
{
    json controls = json::object();
    const input_group &numbers = input_groups().front(); // the frame's own
    write_fields(controls, numbers.fields, numbers.record(frame));
    json inputs = {{"controls", std::move(controls)}, {"effects", effects_json(frame.controls.effects)}};
    if (frame.frame)
        inputs["size"] = {frame.frame->size.width, frame.frame->size.height};
    if (frame.colour)
        inputs["ccm"] = frame.colour->ccm;
    return inputs;
}

} // namespace

json report_data(const scene &setup, const byte_buffer &container, const std::string &tuning_name,
                 const frame_choice &chosen)
{
    isp_session session(container, tuning_name, setup);
    const std::vector<computed_frame> frames = compute_frames(session, setup, chosen, true);
    const scene plain = without_tone(setup);
    isp_session plain_session(container, tuning_name, plain);
    const std::vector<computed_frame> plain_frames = compute_frames(plain_session, plain, chosen, false);

    gain_curves curves;
    json list = json::array();
    for (size_t i = 0; i < frames.size(); ++i) {
        json &made = list.emplace_back(frame_json(frames[i]));
        made.update({{"inputs", inputs_json(setup.frames[frames[i].index])},
                     {"plain_gamma", gamma_tables(plain_frames[i].snapshot)},
                     {"records", curves.of_frame(*frames[i].origin)}});
    }
    return {{"record_size", AIC_RECORD_SIZE}, {"frames", std::move(list)}, {"curves", curves.take()}};
}

} // namespace qz::desk
