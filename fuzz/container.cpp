// Arbitrary bytes as a tuning container, with any allocation failing on the way.
#include "fuzz/containers.h"
#include "fuzz/input.h"
#include "qz_isp/context.h"
#include "tests/allocation_faults.h"

namespace {

// What the library does not read of a container's header says how it is handed over.
struct handover {
    uint8_t tag[4];
    uint8_t repaired;        // bit 0
    uint8_t failing;         // modulo 64; 0: no allocation fails, 1: the first one does, and so on
    uint8_t failing_onwards; // bit 0: so do all later ones
    uint8_t grid_width;
    uint8_t grid_height;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const fuzz::exact<uint8_t> container(size);
    fuzz::fill(container.elements(), {bytes, size});
    const auto how = fuzz::input(bytes, size).take<handover>();
    if ((how.repaired & 1) != 0)
        fuzz::repair(container.elements());

    const isp_blob blob = {container.data(), static_cast<uint32_t>(size)};
    const long before = faults::live_blocks();
    const long failing = how.failing % 64 - 1L;
    faults::fail_allocation(failing, (how.failing_onwards & 1) != 0);
    isp_context *context = qz_isp_2_7_init(&blob, how.grid_width, how.grid_height, nullptr, nullptr);
    faults::fail_allocation(faults::never);
    fuzz::expect(context != nullptr || failing != faults::never || (how.repaired & 1) == 0 || size < 24,
                 "a repaired container is accepted");
    qz_isp_2_7_deinit(context);
    fuzz::expect(faults::live_blocks() == before, "init and deinit free what they allocate");
    return 0;
}
