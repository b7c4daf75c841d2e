// Scenes as qz-isp reads them; the frames of those that it accepts are run with the sample tuning and
// explained.
#include <string_view>

#include "error.h"
#include "explain.h"
#include "input.h"
#include "sample.h"
#include "session.h"
#include "tuning_source.h"

namespace {

namespace tool = qz::tool;

void run_frames(const tool::scene &scene)
{
    static const tool::byte_buffer tuning = tool::pack_container("sample", tool::sample_tuning);
    constexpr uint64_t enough_cells = 100'000;
    if (uint64_t{scene.grid_width} * scene.grid_height > enough_cells)
        return;
    tool::isp_session session(tuning, "sample", scene);
    for (const tool::frame_inputs &frame : scene.frames) {
        const tool::record_snapshot record = session.run(frame);
        tool::explain_frame(session, frame, record);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(bytes), size);
    try {
        run_frames(tool::read_scene("input", text));
    } catch (const tool::file_error &) {
        return 0;
    }
    return 0;
}
