#include "desk/makernote/file.h"
#include "desk/makernote/handle.h"
#include "desk/record/dump.h"
#include "desk/run/session.h"
#include "desk/run/settings.h"
#include "tools/base/exit_codes.h"
#include "tools/base/output_file.h"
#include "tools/commands/commands.h"
#include "tools/text/record_text.h"

namespace qz::tool {

using namespace desk;

namespace {

byte_buffer dump_of(const std::vector<computed_frame> &frames)
{
    byte_buffer dump;
    for (const computed_frame &frame : frames)
        append_record(dump, frame.snapshot);
    return dump;
}

} // namespace

int run(const run_options &options)
{
    expect_one_standard_input(options.inputs);
    scene scene = load_scene(options.inputs);
    const frame_choice chosen = choose_frames(scene, options.frame);
    byte_buffer container = load_container(options.inputs);
    apply_settings(options.settings, scene, chosen, container);
    const makernote_handle makernote = options.makernote ? make_makernote() : nullptr;
    isp_session session(std::move(container), tuning_name(options.inputs), scene, makernote.get());
    const std::vector<computed_frame> frames = compute_frames(session, scene, chosen, options.explain);
    if (options.makernote)
        write_file(*options.makernote, save_makernote(makernote.get()), source_files(options.inputs));
    else if (options.raw)
        write_file(*options.raw, dump_of(frames), source_files(options.inputs));
    else
        write_text("-", options.as_json ? frames_json(frames) : frames_text(frames, options.all));
    return exit_success;
}

} // namespace qz::tool
