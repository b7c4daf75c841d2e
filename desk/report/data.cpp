#include "report_data.h"

#include <nlohmann/json.hpp>

#include "frame_fields.h"
#include "gain_curves.h"
#include "json_fields.h"
#include "record_print.h"

namespace qz::tool {

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

// The scene with brightness and contrast left out, in a context of its own.
class plain_session {
  public:
    plain_session(const scene &inputs, const byte_buffer &container, const std::string &tuning)
        : session_(container, tuning, inputs)
    {}

    json gamma_of(frame_inputs frame)
    {
        frame.controls.brightness = 0;
        frame.controls.contrast = 0;
        return gamma_tables(session_.run(frame));
    }

  private:
    isp_session session_;
};

json effects_json(uint32_t effects)
{
    json names = json::array();
    for (const std::string_view name : effect_names) {
        if ((effects & 1u) != 0)
            names.push_back(name);
        effects >>= 1;
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

json report_data(const scene &inputs, const byte_buffer &container, const std::string &tuning,
                 const std::pair<size_t, size_t> &chosen)
{
    isp_session session(container, tuning, inputs);
    plain_session plain(inputs, container, tuning);
    gain_curves curves;
    json frames = json::array();
    for (size_t i = 0; i < chosen.second; ++i) {
        const frame_inputs &frame = inputs.frames[i];
        const record_snapshot snapshot = session.run(frame);
        json plain_gamma = plain.gamma_of(frame);
        if (i < chosen.first)
            continue;
        const frame_origin origin = explain_frame(session, frame, snapshot);
        json &made = frames.emplace_back(frame_json({i, frame.name, snapshot, origin}));
        made.update({{"inputs", inputs_json(frame)},
                     {"plain_gamma", std::move(plain_gamma)},
                     {"records", curves.of_frame(origin)}});
    }
    return {{"frames", std::move(frames)}, {"curves", curves.take()}};
}

} // namespace qz::tool
