#include "tools/base/verdict.h"

#include <cstdio>

#include <fmt/format.h>

#include "desk/tuning/verdict.h"
#include "qz_isp/error.h"
#include "tools/base/log.h"

namespace qz::tool {

uint32_t quiet_verdict(desk::byte_view container)
{
    const quiet_log quiet;
    return desk::library_verdict(container);
}

bool print_verdict(const std::string &name, desk::byte_view container)
{
    const uint32_t verdict = quiet_verdict(container);
    if (verdict != ISP_SUCCESS)
        fmt::print(stderr, "qz-isp: {}: the library refuses it with status {}: {}\n", name, verdict,
                   desk::verdict_text(verdict));
    return verdict == ISP_SUCCESS;
}

void print_problem(const std::string &name, const desk::tuning_problem &problem)
{
    fmt::print(stderr, "qz-isp: {}: {}{}\n", name, problem.error ? "" : "warning: ", desk::problem_text(problem));
}

} // namespace qz::tool
