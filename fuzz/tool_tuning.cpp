// Tuning containers and their JSON sources as qz-isp reads them: whatever it accepts survives the way through the other
// form, and it refuses what the library refuses.
#include <algorithm>

#include "desk/base/error.h"
#include "desk/explain/explain.h"
#include "desk/tuning/load.h"
#include "desk/tuning/pack.h"
#include "desk/tuning/to_json.h"
#include "fuzz/input.h"
#include "qz_isp/context.h"

namespace {

namespace desk = qz::desk;

// Where a frame's values come from can be told for whatever the library accepts.
void explain(desk::byte_view bytes)
{
    desk::frame_inputs inputs = {};
    inputs.frame = isp_frame_desc{{{}, 640, 480}, 1, 1, 1, 1};
    inputs.aux_size = isp_geometry{{}, 320, 240};
    inputs.controls.tuning_mode = bytes[4] % 4u; // not read by the library
    inputs.controls.nr_mode = 2;
    inputs.controls.edge_mode = 1;
    desk::isp_session session({bytes.begin(), bytes.end()}, "input", {});
    const desk::frame_origin origin = desk::explainer(session).explain(inputs, session.run(inputs));
    for (const desk::block_origin &block : origin.blocks)
        fuzz::expect(!block.rows || std::max(block.rows->lower, block.rows->upper) < block.rows->count,
                     "rows around the gain are rows of the record");
}

bool library_accepts(desk::byte_view container)
{
    const isp_blob blob = {container.data(), static_cast<uint32_t>(container.size())};
    isp_context *context = qz_isp_2_7_init(&blob, 1, 1, nullptr, nullptr);
    qz_isp_2_7_deinit(context);
    return context != nullptr;
}

void check(desk::byte_view bytes)
{
    const desk::tuning_container container = desk::read_container("input", bytes);
    fuzz::expect(library_accepts(bytes) != container.has_errors(), "problems are what the library refuses");
    if (!container.has_errors())
        explain(bytes);
    for (const desk::tuning_problem &problem : container.problems)
        fuzz::expect(problem.offset < bytes.size(), "problems lie in the file");
    const desk::byte_buffer packed = desk::pack_container("source", desk::container_source(container));
    fuzz::expect(std::ranges::equal(packed, bytes), "packing a container's source gives the container");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    desk::byte_buffer container;
    try {
        container = desk::container_bytes("input", {bytes, bytes + size});
        desk::read_container("input", container);
    } catch (const desk::error &) {
        return 0;
    }
    check(container);
    return 0;
}
