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

std::optional<index_span> find_indices(std::string_view text, uint32_t limit)
{
    std::string_view last = text;
    if (text.starts_with('[') && text.ends_with(']'))
        last = text.substr(1, text.size() - 2);
    std::string_view first = last;
    if (const size_t dots = last.find(".."); dots != std::string_view::npos && last.size() != text.size()) {
        first = last.substr(0, dots);
        last = last.substr(dots + 2);
    }
    const std::optional<uint64_t> from = whole_number_of(first);
    const std::optional<uint64_t> to = whole_number_of(last);
    if (!from || !to || *from > *to || *to >= limit)
        return std::nullopt;
    return index_span{static_cast<uint32_t>(*from), static_cast<uint32_t>(*to - *from + 1)};
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
        if (const auto indices = find_indices(name.substr(described.name.size()), described.count))
            return field_part{&described, indices->first, indices->count};
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
