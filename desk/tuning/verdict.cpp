#include "desk/tuning/verdict.h"

#include "qz_isp/context.h"
#include "qz_isp/error.h"
#include "qz_isp/tuning.h"

namespace qz::desk {

uint32_t library_verdict(byte_view container)
{
    if (container.size() > UINT32_MAX) // its size cannot be told
        return ISP_INVALID_ARGUMENT;
    const isp_blob blob = {container.data(), static_cast<uint32_t>(container.size())};
    isp_context context = {};
    const uint32_t status = isp_parse(&blob, &context);
    isp_parse_deinit(&context);
    return status;
}

std::string_view verdict_text(uint32_t verdict)
{
    switch (verdict) {
    case ISP_SUCCESS: return "accepted";
    case ISP_OUT_OF_MEMORY: return "out of memory";
    case ISP_INVALID_DATA: return "a malformed record, or one that no container may have";
    case ISP_INVALID_ARGUMENT: return "no container";
    default: return "unknown";
    }
}

} // namespace qz::desk
