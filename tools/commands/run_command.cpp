#include "commands.h"
#include "makernote_file.h"
#include "record_print.h"
#include "session.h"

namespace qz::tool {

namespace {

struct makernote_deleter {
    void operator()(qz_mkn *makernote) const { qz_mkn_destroy(makernote); }
};
using makernote_handle = std::unique_ptr<qz_mkn, makernote_deleter>;

std::vector<computed_frame> compute(const run_options &options, qz_mkn *makernote)
{
    expect_one_standard_input(options.inputs);
    const scene inputs = load_scene(options.inputs);
    const auto [first, last] = chosen_frames(inputs, options.frame);
    isp_session session(load_container(options.inputs), tuning_name(options.inputs), inputs, makernote);
    std::vector<computed_frame> frames;
    for (size_t i = 0; i < last; ++i) {
        const frame_inputs &frame = inputs.frames[i];
        const record_snapshot snapshot = session.run(frame);
        if (i >= first)
            frames.push_back({i, frame.name, snapshot, std::nullopt});
        if (i >= first && options.explain)
            frames.back().origin = explain_frame(session, frame, snapshot);
    }
    return frames;
}

byte_buffer frames_bytes(const std::vector<computed_frame> &frames)
{
    byte_buffer bytes;
    for (const computed_frame &frame : frames) {
        const auto *start = reinterpret_cast<const uint8_t *>(&frame.snapshot.record);
        bytes.insert(bytes.end(), start, start + frame.snapshot.bytes_used);
    }
    return bytes;
}

} // namespace

int run(const run_options &options)
{
    const makernote_handle makernote(options.makernote ? qz_mkn_create() : nullptr);
    const std::vector<computed_frame> frames = compute(options, makernote.get());
    if (options.makernote)
        write_file(*options.makernote, save_makernote(makernote.get()));
    else if (options.raw)
        write_file(*options.raw, frames_bytes(frames));
    else
        write_text("-", options.as_json ? frames_json(frames) : frames_text(frames, options.all));
    return exit_success;
}

} // namespace qz::tool
