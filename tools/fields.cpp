#include "fields.h"

#include <cstring>

namespace qz::tool {

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
    const auto *bytes = static_cast<const uint8_t *>(base) + described.offset + index * element_size(described.type);
    return visit_type(described.type, [&](auto typed) {
        std::memcpy(&typed, bytes, sizeof typed);
        return static_cast<double>(typed);
    });
}

std::vector<std::string_view> field_names(std::span<const field> fields)
{
    std::vector<std::string_view> names;
    for (const field &described : fields)
        names.push_back(described.name);
    return names;
}

} // namespace qz::tool
