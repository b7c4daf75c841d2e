#include "desk/base/fields.h"

#include <cstring>

#include <fmt/format.h>

#include "desk/base/numbers.h"

namespace qz::desk {

void *element_at(const field &described, void *base, size_t index)
{
    return static_cast<uint8_t *>(base) + described.offset + index * element_size(described.type);
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

std::optional<field_part> find_part(std::span<const field> fields, std::string_view name)
{
    for (const field &described : fields) {
        if (name == described.name)
            return field_part{&described, 0, described.count};
    }
    for (const field &described : fields) {
        if (!described.is_list || !name.starts_with(described.name))
            continue;
        std::string_view digits = name.substr(described.name.size());
        if (digits.starts_with('[') && digits.ends_with(']'))
            digits = digits.substr(1, digits.size() - 2);
        const std::optional<uint64_t> index = whole_number_of(digits);
        if (index && *index < described.count)
            return field_part{&described, static_cast<uint32_t>(*index), 1};
    }
    return std::nullopt;
}

std::string element_name(const field &described, size_t index)
{
    return described.is_list ? fmt::format("{}[{}]", described.name, index) : std::string(described.name);
}

std::string element_names(const field &described, std::string_view prefix)
{
    const std::string first = fmt::format("{}{}", prefix, element_name(described, 0));
    return described.count == 1
               ? first
               : fmt::format("{} to {}{}", first, prefix, element_name(described, described.count - 1));
}

} // namespace qz::desk
