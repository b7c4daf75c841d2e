#include "desk/explain/origin.h"

#include <utility>

namespace qz::desk {

std::string_view origin_name(origin source)
{
    constexpr std::string_view names[] = {"tuning", "inputs", "fixed", "context", "defaults", "off", "kept", "absent"};
    return names[static_cast<size_t>(source)];
}

void block_origin::add(std::string_view reason)
{
    if (!why.empty() && !reason.empty())
        why += ", ";
    why += reason;
}

void block_origin::add_first(std::string_view reason)
{
    const std::string others = std::exchange(why, std::string(reason));
    add(others);
}

} // namespace qz::desk
