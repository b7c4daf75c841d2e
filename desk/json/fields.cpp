#include "desk/json/fields.h"

#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>

namespace qz::desk {

namespace {

void read_element(const json_node &node, const field &described, void *base, size_t index)
{
    void *target = element_at(described, base, index);
    visit_type(described.type, [&](auto typed) {
        using type = decltype(typed);
        if constexpr (std::is_floating_point_v<type>)
            typed = node.single();
        else
            typed = static_cast<type>(node.integer(std::numeric_limits<type>::min(), std::numeric_limits<type>::max()));
        std::memcpy(target, &typed, sizeof typed);
    });
}

json element_json(const field &described, const void *base, size_t index)
{
    if (described.type == element::f32)
        return number_at(described, base, index);
    return integer_at(described, base, index);
}

} // namespace

void read_fields(const json_node &object, std::span<const field> fields, void *base)
{
    for (const field &described : fields) {
        const std::optional<json_node> member = object.find(described.name);
        if (!member)
            continue;
        if (!described.is_list) {
            read_element(*member, described, base, 0);
            continue;
        }
        size_t index = 0;
        for (const json_node &item : member->items(described.count))
            read_element(item, described, base, index++);
    }
}

void write_fields(json &object, std::span<const field> fields, const void *base)
{
    for (const field &described : fields) {
        json value = json::array();
        for (size_t i = 0; i < described.count; ++i)
            value.push_back(element_json(described, base, i));
        object[std::string(described.name)] = described.is_list ? std::move(value) : value[0];
    }
}

} // namespace qz::desk
