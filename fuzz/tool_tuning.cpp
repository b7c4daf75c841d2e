// Tuning containers and their JSON sources as qz-isp reads them: whatever it accepts survives the way through the other
// form, and it refuses what the library refuses.
#include <algorithm>

#include "error.h"
#include "input.h"
#include "qz_isp/context.h"
#include "tuning_source.h"

namespace {

namespace tool = qz::tool;

bool library_accepts(tool::byte_view container)
{
    const isp_blob blob = {container.data(), static_cast<uint32_t>(container.size())};
    isp_context *context = qz_isp_2_7_init(&blob, 1, 1, nullptr, nullptr);
    qz_isp_2_7_deinit(context);
    return context != nullptr;
}

void check(tool::byte_view bytes)
{
    const tool::tuning_container container = tool::read_container("input", bytes);
    fuzz::expect(library_accepts(bytes) != container.has_errors(), "problems are what the library refuses");
    for (const tool::tuning_problem &problem : container.problems)
        fuzz::expect(problem.offset < bytes.size(), "problems lie in the file");
    const tool::byte_buffer packed = tool::pack_container("source", tool::container_source(container));
    fuzz::expect(std::ranges::equal(packed, bytes), "packing a container's source gives the container");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    tool::byte_buffer container;
    try {
        container = tool::container_bytes("input", {bytes, bytes + size});
        tool::read_container("input", container);
    } catch (const tool::file_error &) {
        return 0;
    }
    check(container);
    return 0;
}
