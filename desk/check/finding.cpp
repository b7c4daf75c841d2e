#include "desk/check/finding.h"

#include <nlohmann/json.hpp>

#include <fmt/format.h>

namespace qz::desk {

std::string place_text(const finding_place &place)
{
    std::string name = place.name.empty() ? "container" : place.name;
    if (!place.offset)
        return name;
    if (!place.id || name.starts_with("id "))
        return fmt::format("{} (offset {})", name, *place.offset);
    return fmt::format("{} (offset {}, id {})", name, *place.offset, *place.id);
}

json finding_json(const finding &found)
{
    const finding_place &place = found.place;
    json value = {{"severity", severity_names[static_cast<size_t>(found.level)]}, {"code", found.code->code}};
    const auto add = [&](const char *name, const auto &part) {
        if (part)
            value[name] = *part;
    };
    value["place"] = place.name.empty() ? "container" : place.name;
    if (!place.record.empty())
        value["record"] = place.record;
    add("id", place.id);
    add("set", place.set);
    add("set_index", place.set_index);
    add("row", place.row);
    add("offset", place.offset);
    add("byte", place.byte);
    value["what"] = found.what;
    value["why"] = found.code->why;
    return value;
}

} // namespace qz::desk
