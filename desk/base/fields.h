// Descriptions of structs: every field by name, element type, count and place. One description serves the readable
// form, JSON in both directions and everything that compares or varies fields.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace qz::desk {

enum class element : uint8_t { u8, i8, u16, i16, u32, i32, f32 };

struct field {
    std::string_view name;
    element type;
    uint32_t count;
    uint32_t columns; // values in a row when it is printed
    uint32_t offset;  // bytes from the start of the struct
    bool is_list;     // a list in JSON even when it has one element
};

template <typename T>
consteval element element_of()
{
    if (std::is_floating_point_v<T>)
        return element::f32;
    constexpr bool negative = std::is_signed_v<T>;
    switch (sizeof(T)) {
    case 1: return negative ? element::i8 : element::u8;
    case 2: return negative ? element::i16 : element::u16;
    default: return negative ? element::i32 : element::u32;
    }
}

template <typename Member>
consteval field make_field(std::string_view name, size_t offset, uint32_t columns)
{
    using scalar = std::remove_all_extents_t<Member>;
    return {name,
            element_of<scalar>(),
            static_cast<uint32_t>(std::max<size_t>(1, std::extent_v<Member, 0>) *
                                  std::max<size_t>(1, std::extent_v<Member, 1>)),
            columns,
            static_cast<uint32_t>(offset),
            std::is_array_v<Member>};
}

consteval field with_type(field described, element type)
{
    described.type = type;
    return described;
}

// The field of a struct, 16 values a row.
#define QZ_FIELD(type, member) make_field<decltype(type::member)>(#member, offsetof(type, member), 16)
// The same with a number of values a row of its own.
#define QZ_FIELD_ROWS(type, member, columns)                                                                           \
    make_field<decltype(type::member)>(#member, offsetof(type, member), columns)

// Where an element is in a struct.
void *element_at(const field &described, void *base, size_t index);

// Calls visitor with a value of the element's C type.
template <typename Visitor>
constexpr auto visit_type(element type, Visitor visitor)
{
    switch (type) {
    case element::u8: return visitor(uint8_t{});
    case element::i8: return visitor(int8_t{});
    case element::u16: return visitor(uint16_t{});
    case element::i16: return visitor(int16_t{});
    case element::i32: return visitor(int32_t{});
    case element::f32: return visitor(float{});
    case element::u32:
    default: return visitor(uint32_t{});
    }
}

constexpr size_t element_size(element type)
{
    return visit_type(type, [](auto typed) { return sizeof typed; });
}

// Unsigned 32-bit elements come out positive, signed ones negative where they are.
int64_t integer_at(const field &described, const void *base, size_t index);
double number_at(const field &described, const void *base, size_t index);

std::vector<std::string_view> field_names(std::span<const field> fields);

// Elements of a field.
struct field_part {
    const field *described;
    uint32_t first;
    uint32_t count;
};

// A run of indices: "[2]", "[0..3]", or "2"; nothing for other texts and where one is not below the limit.
struct index_span {
    uint32_t first;
    uint32_t count;
};
std::optional<index_span> find_indices(std::string_view text, uint32_t limit);

// A field by its name, "param", or elements of a list, "param[2]", "param2" or "param[0..2]".
std::optional<field_part> find_part(std::span<const field> fields, std::string_view name);

// The name of an element, "param[2]" where the field is a list.
std::string element_name(const field &described, size_t index);

// The elements that find_part() knows, for messages: "shift", "gain[0] to gain[3]"; each after the prefix.
std::string element_names(const field &described, std::string_view prefix = "");

} // namespace qz::desk
