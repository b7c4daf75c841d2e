#include "desk/tuning/verdict.h"

#include "qz_isp/error.h"
#include "qz_isp/tuning.h"

namespace qz::desk {

parsed_container::parsed_container(byte_view bytes)
{
    const isp_blob blob = {bytes.data(), static_cast<uint32_t>(bytes.size())};
    const bool has_size = bytes.size() <= UINT32_MAX;
    status_ = has_size ? isp_parse(&blob, &context_) : uint32_t{ISP_INVALID_ARGUMENT};
}

parsed_container::~parsed_container()
{
    isp_parse_deinit(&context_);
}

uint32_t library_verdict(byte_view container)
{
    return parsed_container(container).status();
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
