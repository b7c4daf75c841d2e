#include "desk/check/check.h"

#include <fmt/format.h>

#include "desk/check/blocks.h"
#include "desk/check/neighbours.h"
#include "desk/check/records.h"
#include "desk/check/rules.h"
#include "desk/tuning/verdict.h"
#include "qz_isp/error.h"

namespace qz::desk {

uint32_t check_tuning(byte_view container, const finding_sink &sink)
{
    const reporter report(sink);
    const parsed_container parsed(container);
    const uint32_t verdict = parsed.status();
    if (verdict != ISP_SUCCESS)
        report.add("refused", {}, fmt::format("found status {}: {}", verdict, verdict_text(verdict)));
    if (verdict == ISP_INVALID_ARGUMENT) // its bytes are anything
        return verdict;

    const checked_container checked = check_records(container, report);
    check_neighbours(checked.records, report);
    check_rules(checked, report);
    if (verdict == ISP_SUCCESS)
        check_blocks(checked, parsed.context(), report);
    return verdict;
}

} // namespace qz::desk
