// Tuning containers and their JSON sources as qz-isp reads them: whatever it accepts survives the way through the other
// form, it refuses what the library refuses, and it can be checked to its end.
#include <algorithm>

#include "desk/base/error.h"
#include "desk/check/check.h"
#include "desk/explain/explain.h"
#include "desk/tuning/load.h"
#include "desk/tuning/pack.h"
#include "desk/tuning/to_json.h"
#include "fuzz/input.h"
#include "qz_isp/context.h"
#include "qz_isp/error.h"

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

// Every finding lies in the container.
void find_faults(desk::byte_view bytes)
{
    const uint32_t verdict = desk::check_tuning(bytes, [&](const desk::finding &found) {
        const desk::finding_place &place = found.place;
        fuzz::expect(place.offset.value_or(0) < bytes.size() && place.byte.value_or(0) <= bytes.size(),
                     "findings lie in the file");
        fuzz::expect(!desk::place_text(place).empty() && !found.what.empty(), "findings say where and what");
    });
    fuzz::expect(library_accepts(bytes) == (verdict == ISP_SUCCESS), "the verdict is the library's");
}

void check(desk::byte_view bytes)
{
    const desk::tuning_container container = desk::read_container("input", bytes);
    fuzz::expect(library_accepts(bytes) != container.has_errors(), "problems are what the library refuses");
    if (!container.has_errors())
        explain(bytes);
    find_faults(bytes);
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
