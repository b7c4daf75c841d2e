#include "fields.h"

#include <cfloat>
#include <cstring>
#include <limits>

namespace qz::tool {

namespace {

template <typename T>
T load(const uint8_t *bytes)
{
    T value;
    std::memcpy(&value, bytes, sizeof value);
    return value;
}

// Calls visitor with a value of the element's C type.
template <typename Visitor>
auto visit_type(element type, Visitor visitor)
{
    switch (type) {
    case element::u8:
        return visitor(uint8_t{});
    case element::i8:
        return visitor(int8_t{});
    case element::u16:
        return visitor(uint16_t{});
    case element::i16:
        return visitor(int16_t{});
    case element::i32:
        return visitor(int32_t{});
    case element::f32:
        return visitor(float{});
    case element::u32:
    default:
        return visitor(uint32_t{});
    }
}

const uint8_t *element_address(const field &described, const void *base, size_t index)
{
    return static_cast<const uint8_t *>(base) + described.offset + index * element_size(described.type);
}

void read_element(const json_node &node, const field &described, void *base, size_t index)
{
    auto *target = static_cast<uint8_t *>(base) + described.offset + index * element_size(described.type);
    visit_type(described.type, [&](auto typed) {
        using type = decltype(typed);
        type value;
        if constexpr (std::is_floating_point_v<type>)
            value = static_cast<float>(node.number(-static_cast<double>(FLT_MAX), static_cast<double>(FLT_MAX)));
        else
            value = static_cast<type>(node.integer(std::numeric_limits<type>::min(), std::numeric_limits<type>::max()));
        std::memcpy(target, &value, sizeof value);
    });
}

json element_json(const field &described, const void *base, size_t index)
{
    const uint8_t *bytes = element_address(described, base, index);
    return visit_type(described.type, [&](auto typed) { return json(load<decltype(typed)>(bytes)); });
}

} // namespace

size_t element_size(element type)
{
    return visit_type(type, [](auto typed) { return sizeof typed; });
}

int64_t integer_at(const field &described, const void *base, size_t index)
{
    return static_cast<int64_t>(number_at(described, base, index));
}

double number_at(const field &described, const void *base, size_t index)
{
    const uint8_t *bytes = element_address(described, base, index);
    return visit_type(described.type, [&](auto typed) { return static_cast<double>(load<decltype(typed)>(bytes)); });
}

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

std::vector<std::string_view> field_names(std::span<const field> fields)
{
    std::vector<std::string_view> names;
    for (const field &described : fields)
        names.push_back(described.name);
    return names;
}

} // namespace qz::tool
