#include "error.h"

#include <fmt/format.h>

namespace qz::tool {

file_error::file_error(std::string_view file, std::string_view what)
    : std::runtime_error(fmt::format("{}: {}", file, what))
{}

file_error::file_error(std::string_view file, std::string_view where, std::string_view found, std::string_view expected)
    : std::runtime_error(where.empty() ? fmt::format("{}: found {}, expected {}", file, found, expected)
                                       : fmt::format("{}: {}: found {}, expected {}", file, where, found, expected))
{}

} // namespace qz::tool
