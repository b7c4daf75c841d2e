// Scenes as qz-isp reads them; the frames of those that it accepts are run with the sample tuning and
// explained.
#include <string_view>

#include "desk/base/error.h"
#include "desk/explain/explain.h"
#include "desk/run/session.h"
#include "desk/tuning/pack.h"
#include "fuzz/input.h"
#include "tools/sample/sample.h"

namespace {

namespace desk = qz::desk;

void run_frames(const desk::scene &scene)
{
    static const desk::byte_buffer tuning = desk::pack_container("sample", qz::tool::sample_tuning);
    constexpr uint64_t enough_cells = 100'000;
    if (uint64_t{scene.grid_width} * scene.grid_height > enough_cells)
        return;
    desk::isp_session session(tuning, "sample", scene);
    const desk::explainer explainer(session);
    for (const desk::frame_inputs &frame : scene.frames) {
        const desk::record_snapshot record = session.run(frame);
        explainer.explain(frame, record);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const std::string_view text(reinterpret_cast<const char *>(bytes), size);
    try {
        run_frames(desk::read_scene("input", text));
    } catch (const desk::error &) {
        return 0;
    }
    return 0;
}
